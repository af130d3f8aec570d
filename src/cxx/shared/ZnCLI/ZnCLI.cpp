#include "ZnCLI.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "CommandTables.h"
#include "LauncherEnvironment.h"
#include "Messages.h"
#include "ZnTrace.h"

namespace {

constexpr size_t KEY_CAPACITY = 256;  // at most 255 characters are compared

ZnCMD* newCommand(CommandKind kind, const CommandRow& row) {
  switch (kind) {
    case CommandKind::CLI:
      return new ZnCLI(row.name, row.classToLoad);
    case CommandKind::Aux:
      return new ZnAux(row.name, row.classToLoad);
    case CommandKind::Aux2:
      return new ZnAux2(row.name, row.classToLoad);
    case CommandKind::InitAux:
      return new ZnInitAux(row.name, row.classToLoad);
    case CommandKind::GetHostNameAux:
      return new ZnGetHostNameAux(row.name, row.classToLoad);
    case CommandKind::MakeKeysAux:
      return new ZnMakeKeysAux(row.name, row.classToLoad);
  }
  return nullptr;
}

}  // namespace

ZnCMD* ZnCLI::createCLI(const std::string& name) {
  char key[KEY_CAPACITY] = {};
  std::strncpy(key, name.c_str(), KEY_CAPACITY - 1);
  for (char* c = key; *c != '\0'; ++c)
    *c = static_cast<char>(tolower(static_cast<unsigned char>(*c)));

  const CommandMatch match = findCommand(key);
  if (match.row == nullptr) {
    ZN_TRACE_MSG(msg::UNRECOGNIZED_COMMAND);
    ZN_TRACE_VALUE("name.c_str()", name.c_str());
    return nullptr;
  }
  return newCommand(match.kind, *match.row);
}

// ---------------------------------------------------------------------------
// ZnCLI: command-line commands keep their name as the first Java argument,
// hand the keys over, then give up privileges.

void ZnCLI::localInit() {
  if (myName == "znnode") unsetenv(DISPLAY_ENV_VAR);
}

void ZnCLI::localProcessing(JNIEnv*) {
  readKeys();
  setFilePermissions();
}

void ZnCLI::localVMargs(JavaVMInitArgs*) {
  ZN_TRACE_MSG("enter localVMargs");
  addJVMOption("-client");
  addJVMOption("-Xint");
  ZN_TRACE_MSG("exit localVMargs");
}

void ZnCLI::setFilePermissions() {
  ZnCMD::setFilePermissions();
}

// ---------------------------------------------------------------------------
// ZnAux2: auxiliary dispatcher commands keep their name as the first argument.

void ZnAux2::localProcessing(JNIEnv*) {
  resetUID();
  setFilePermissions();
}

void ZnAux2::initAuthFlags() {}

// ---------------------------------------------------------------------------
// ZnAux and its subclasses run their own class without the command name.

void ZnAux::localInit() {
  --myArgc;
  ++myArgv;
}

void ZnAux::localProcessing(JNIEnv*) {
  resetUID();
  setFilePermissions();
}

// zninit runs with the privileges and file-creation mask it was started with.
void ZnInitAux::localProcessing(JNIEnv*) {}

void ZnGetHostNameAux::initAuthFlags() {}

void ZnMakeKeysAux::initAuthFlags() {}
