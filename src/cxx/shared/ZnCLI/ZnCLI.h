// The command classes and the factory that picks one by command name.
//
//   ZnCLI             command-line commands: keys, then privilege drop
//   ZnAux2            auxiliary dispatcher commands: privilege drop
//   ZnAux             commands running their own class, without the name
//     ZnInitAux         zninit: keeps privileges and file-creation mask
//     ZnGetHostNameAux  zngethostname
//     ZnMakeKeysAux     znmakekeys
#pragma once

#include <string>

#include "ZnCMD.h"

class ZnCLI : public ZnCMD {
 public:
  using ZnCMD::ZnCMD;

  // The command object for `name`, or null when no command has that name.
  static ZnCMD* createCLI(const std::string& name);

  void localInit() override;
  void localProcessing(JNIEnv* env) override;
  void localVMargs(JavaVMInitArgs* args) override;
  void setFilePermissions() override;
};

class ZnAux2 : public ZnCMD {
 public:
  using ZnCMD::ZnCMD;
  void localProcessing(JNIEnv* env) override;
  void initAuthFlags() override;
};

class ZnAux : public ZnCMD {
 public:
  using ZnCMD::ZnCMD;
  void localInit() override;
  void localProcessing(JNIEnv* env) override;
};

class ZnInitAux : public ZnAux {
 public:
  using ZnAux::ZnAux;
  void localProcessing(JNIEnv* env) override;
};

class ZnGetHostNameAux : public ZnAux {
 public:
  using ZnAux::ZnAux;
  void initAuthFlags() override;
};

class ZnMakeKeysAux : public ZnAux {
 public:
  using ZnAux::ZnAux;
  void initAuthFlags() override;
};
