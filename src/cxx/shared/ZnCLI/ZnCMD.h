// ZnCMD: one launched command.
//
// The object carries everything one launch needs and runs it in a fixed
// order (run -> setup -> jvmSequence):
//
//   setup        real user id, trace, option echo, class hooks
//   startJVM     option list (class options first) and JNI_CreateJavaVM
//   localProcessing  class step: keys, privilege drop, file-creation mask
//   callMain     the Java class's static main(String[])
//   endJVM       DestroyJavaVM, waiting for non-daemon threads
//   localDone    class hook; run returns 0
//
// Subclasses (ZnCLI.h) differ only in the hooks. Every failure ends the
// process in errorExit; nothing returns an error code.
#pragma once

#include <jni.h>
#include <sys/types.h>

#include <string>

struct JvmOptionRow;

class ZnCMD {
 public:
  static constexpr int MAX_JVM_OPTIONS = 40;

  ZnCMD(const std::string& name, const std::string& classToLoad);
  virtual ~ZnCMD();

  // Virtual operations, in slot order.
  virtual int run(int argc, char** argv, char** envp);
  virtual void loadLibraries();
  virtual void localInit();
  virtual void localProcessing(JNIEnv* env);
  virtual void localDone();
  virtual void localVMargs(JavaVMInitArgs* args);
  virtual void initAuthFlags();
  virtual void setFilePermissions();
  [[noreturn]] virtual void errorExit(int code, const char* msg);

  static std::string getName(const std::string& path);

  void setup();
  void jvmSequence();
  void readKeys();
  void resetUID();
  void callMain(int argc, char** argv);
  void endJVM();
  void insertInstallDir(std::string& path);
  std::string readBasePath();
  void addJVMOption(const std::string& option);
  std::string genOptionString(std::string property, std::string value, std::string prefix,
                              std::string separator);
  std::string genOptionString(std::string property, char* value, std::string prefix,
                              std::string separator);
  void setupDebugLogging();
  jstring convertString(char* s);
  jobjectArray convertArgs(int argc, char** argv);
  std::string readShlibPath();
  std::string readJavaHome();
  std::string readClassPath();
  std::string getFilesFromDir(std::string dir, std::string ext);
  void startJVM();
  std::string getClassToLoad();

 protected:
  uid_t origUID = 0;
  JNIEnv* myEnv = nullptr;
  JavaVM* myJVM = nullptr;
  std::string myName;
  std::string myBasePath;
  std::string myClassToLoad;
  int myArgc = 0;
  char** myArgv = nullptr;
  char** myEnvp = nullptr;
  JavaVMOption myOptions[MAX_JVM_OPTIONS] = {};
  int myOptionCount = 0;
  bool myShowJvmOpts = false;

 private:
  void appendFilesFromDir(std::string& list, const std::string& dir, const std::string& ext);
  void addOptionRow(const JvmOptionRow& row);
  [[noreturn]] void fail(const std::string& message);
};
