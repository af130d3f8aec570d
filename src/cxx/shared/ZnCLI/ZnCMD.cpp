#include "ZnCMD.h"

#include <dirent.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "JvmOptionRows.h"
#include "LauncherEnvironment.h"
#include "Messages.h"
#include "PathRules.h"
#ifdef ZN_HARDENED_SETUID
#include "SetuidGuard.h"
#endif
#include "ZnDebugInit.h"
#include "ZnTrace.h"
#include "ZnVersion.h"

ZnCMD::ZnCMD(const std::string& name, const std::string& classToLoad)
    : myName(name), myClassToLoad(classToLoad) {}

ZnCMD::~ZnCMD() = default;

// ---------------------------------------------------------------------------
// Run sequence

int ZnCMD::run(int argc, char** argv, char** envp) {
  myArgc = argc;
  myArgv = argv;
  myEnvp = envp;
  setup();
  jvmSequence();
  localDone();
  return 0;
}

void ZnCMD::setup() {
#ifdef ZN_HARDENED_SETUID
  setuidguard::screenEnvironment(myName);
#endif
  origUID = getuid();
  setupDebugLogging();
  myShowJvmOpts = getenv(SHOW_JVM_OPTS_ENV_VAR) != nullptr;
  loadLibraries();
  localInit();
}

void ZnCMD::jvmSequence() {
  startJVM();
  localProcessing(myEnv);
  callMain(myArgc, myArgv);
  endJVM();
}

void ZnCMD::loadLibraries() {}
void ZnCMD::localInit() {}
void ZnCMD::localProcessing(JNIEnv*) {}
void ZnCMD::localDone() {}
void ZnCMD::localVMargs(JavaVMInitArgs*) {}
void ZnCMD::initAuthFlags() {}

std::string ZnCMD::getClassToLoad() {
  return myClassToLoad;
}

std::string ZnCMD::getName(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

void ZnCMD::setupDebugLogging() {
  ZnDebugInit{myName};
}

// ---------------------------------------------------------------------------
// Privileges, file permissions, failure exit

void ZnCMD::resetUID() {
  ZN_TRACE_ENTER("ZnCMD::resetUID");
  ZN_TRACE_VALUE("origUID", static_cast<long>(origUID));
#ifdef ZN_HARDENED_SETUID
  if (const char* problem = setuidguard::dropPrivileges(origUID, getgid())) {
    fail(msg::ERROR_PREFIX + myName + problem);
  }
#else
  if (setuid(origUID) < 0) fail(msg::ERROR_PREFIX + myName + msg::CANNOT_SET_UID);
#endif
  ZN_TRACE_LEAVE("ZnCMD::resetUID");
}

void ZnCMD::setFilePermissions() {
  umask(022);
}

void ZnCMD::errorExit(int code, const char* message) {
  ZN_TRACE_ENTER("ZnCMD::errorExit");
  if (message != nullptr) {
    ZN_TRACE_VALUE("logMsg", message);
    fprintf(stderr, "%s\n", message);
    fflush(stderr);
    syslog(LOG_ERR, "%s", message);
  }
  ZN_TRACE_LEAVE("ZnCMD::errorExit");
  exit(code);
}

void ZnCMD::fail(const std::string& message) {
  errorExit(1, message.c_str());
  std::abort();  // errorExit never returns
}

// ---------------------------------------------------------------------------
// Install base and path templates

std::string ZnCMD::readBasePath() {
  ZN_TRACE_ENTER("ZnCMD::readBasePath");
  if (myBasePath.empty()) {
    if (const char* szPATH = getenv(BASE_DIR_ENV_VAR)) {
      ZN_TRACE_VALUE("szPATH", szPATH);
      myBasePath = szPATH;
    } else {
      myBasePath.clear();
    }
    ZN_TRACE_VALUE("myBasePath.c_str()", myBasePath.c_str());
  }
  ZN_TRACE_LEAVE("ZnCMD::readBasePath");
  return myBasePath;
}

void ZnCMD::insertInstallDir(std::string& path) {
  ZN_TRACE_ENTER("\"insertInstallDir\"");
  expandInstallDir(path, readBasePath());
  ZN_TRACE_LEAVE("\"insertInstallDir\"");
}

// ---------------------------------------------------------------------------
// Library path, Java home, class path

std::string ZnCMD::readShlibPath() {
  ZN_TRACE_ENTER("ZnCMD::readShlibPath");
  std::string result;
  const char* fromEnvironment = nullptr;
  if (getenv(USE_ENV) == nullptr) {
    ZN_TRACE_MSG("ZN_USE_ENV is not set");
  } else if ((fromEnvironment = getenv(LIBRARY_PATH_ENV_VAR)) != nullptr) {
    ZN_TRACE_MSG("ZN_USE_ENV is set - using external shared library path");
  } else {
    ZN_TRACE_MSG("Library path does not appear to be set.  Setting to default.");
  }
  if (fromEnvironment != nullptr) {
    result = fromEnvironment;
  } else {
    result = DEFAULT_SHLIB_PATH;
    insertInstallDir(result);
  }
  if (!result.empty()) result += pathSeparator;
  std::string additional = ADDITIONAL_SHLIB_DIR;
  insertInstallDir(additional);
  result += additional;
  ZN_TRACE_MSG(result.c_str());
  ZN_TRACE_LEAVE("ZnCMD::readShlibPath");
  return result;
}

std::string ZnCMD::readJavaHome() {
  ZN_TRACE_ENTER("ZnCMD::readJavaHome");
  std::string result;
  const char* fromEnvironment = nullptr;
  if (getenv(USE_ENV) != nullptr) {
    ZN_TRACE_MSG("ZN_USE_ENV is set - using external JAVA_HOME");
    fromEnvironment = getenv(JAVA_HOME);
    if (fromEnvironment == nullptr) {
      ZN_TRACE_MSG("Java Home does not appear to be set.  Setting to default.");
    }
  } else {
    ZN_TRACE_MSG("ZN_USE_ENV is not set");
  }
  if (fromEnvironment != nullptr) {
    result = fromEnvironment;
  } else {
    result = DEFAULT_JAVA_HOME;
    insertInstallDir(result);
  }
  ZN_TRACE_MSG(result.c_str());
  ZN_TRACE_LEAVE("ZnCMD::readJavaHome");
  return result;
}

std::string ZnCMD::readClassPath() {
  ZN_TRACE_ENTER("ZnCMD::readClassPath");
  std::string classPath;
  if (getenv(USE_ENV) != nullptr) {
    ZN_TRACE_MSG("ZN_USE_ENV value is set -- attempt use the environment class path.");
    if (const char* fromEnvironment = getenv(CLASS_PATH_ENV_VAR)) {
      ZN_TRACE_MSG("Environment class path defined -- using it.");
      classPath = fromEnvironment;
    }
  }
  // The archives of each directory go straight into the class path: with
  // thousands of them, an intermediate list per directory would be written
  // (and its pages touched) twice.
  std::string patchDir = PATCH_DIR;
  insertInstallDir(patchDir);
  appendFilesFromDir(classPath, patchDir, ARCHIVE_EXTENSION);

  std::string libDir = LIB_DIR;
  insertInstallDir(libDir);
  joinPathPiece(classPath, libDir + MAIN_ARCHIVE, pathSeparator);
  appendFilesFromDir(classPath, libDir, ARCHIVE_EXTENSION);

  std::string runtimeLibDir = RUNTIME_LIB_DIR;
  insertInstallDir(runtimeLibDir);
  appendFilesFromDir(classPath, runtimeLibDir, ARCHIVE_EXTENSION);

  std::string tail = CLASS_PATH_TAIL;
  insertInstallDir(tail);
  joinPathPiece(classPath, tail, pathSeparator);

  insertInstallDir(classPath);  // a "%b" in CLASSPATH means the install base too
  ZN_TRACE_VALUE("classPath.c_str()", classPath.c_str());
  ZN_TRACE_LEAVE("ZnCMD::readClassPath");
  return classPath;
}

std::string ZnCMD::getFilesFromDir(std::string dir, std::string ext) {
  std::string pathList;
  appendFilesFromDir(pathList, dir, ext);
  return pathList;
}

// getFilesFromDir, appending the matching entries to `list` (joined as
// joinPathPiece joins a piece); the trace shows a getFilesFromDir call.
void ZnCMD::appendFilesFromDir(std::string& list, const std::string& dir, const std::string& ext) {
  ZN_TRACE_ENTER("ZnCMD::getFilesFromDir");
  ZN_TRACE_VALUE("dir.c_str()", dir.c_str());
  ZN_TRACE_VALUE("ext.c_str()", ext.c_str());
  const std::string pattern = "." + ext;
  const size_t start = list.size();
  ZN_TRACE_MSG("open directory.");
  if (DIR* stream = opendir(dir.c_str())) {
    ZN_TRACE_MSG("Begin while.");
    while (const struct dirent* dirStruct = readdir(stream)) {
      const char* filename = dirStruct->d_name;
      ZN_TRACE_MSG("get filename.");
      ZN_TRACE_VALUE("dirStruct->d_name", dirStruct->d_name);
      ZN_TRACE_VALUE("filename", filename);
      if (!isArchiveName(filename, pattern)) continue;
      ZN_TRACE_VALUE("index", pattern.c_str());
      if (!list.empty()) list += pathSeparator;
      list += dir;
      list += filename;
    }
    closedir(stream);
    ZN_TRACE_VALUE("pathList.c_str()",
                   list.c_str() + start + (start > 0 && list.size() > start ? 1 : 0));
  }
  ZN_TRACE_LEAVE("ZnCMD::getFilesFromDir");
}

// ---------------------------------------------------------------------------
// JVM option list

void ZnCMD::addJVMOption(const std::string& option) {
  ZN_TRACE_ENTER("\"addJVMOption\"");
  if (myOptionCount > MAX_JVM_OPTIONS - 1) errorExit(1, msg::NO_OPTION_SPACE);
  ZN_TRACE_VALUE("option.c_str()", option.c_str());
  // The virtual machine keeps pointers to the option texts, so each gets a
  // private copy that lives until the process ends.
  char* copy = new char[option.size() + 1];
  std::memcpy(copy, option.c_str(), option.size() + 1);
  if (myShowJvmOpts) {
    fprintf(stdout, "%s%s\n", msg::OPTION_ECHO, copy);
    fflush(stdout);
  }
  myOptions[myOptionCount].optionString = copy;
  myOptions[myOptionCount].extraInfo = nullptr;
  ++myOptionCount;
  ZN_TRACE_LEAVE("\"addJVMOption\"");
}

std::string ZnCMD::genOptionString(std::string property, std::string value, std::string prefix,
                                   std::string separator) {
  ZN_TRACE_ENTER("ZnCMD::genOptionString(string,string)");
  ZN_TRACE_MSG("Incoming:");
  ZN_TRACE_VALUE("property.c_str()", property.c_str());
  ZN_TRACE_VALUE("value.c_str()", value.c_str());
  std::string retValue;
  if (!value.empty()) retValue = prefix + property + separator + value;
  ZN_TRACE_VALUE("retValue.c_str()", retValue.c_str());
  ZN_TRACE_LEAVE("ZnCMD::genOptionString(string,string)");
  return retValue;
}

std::string ZnCMD::genOptionString(std::string property, char* value, std::string prefix,
                                   std::string separator) {
  ZN_TRACE_ENTER("ZnCMD::genOptionString(string,char*)");
  ZN_TRACE_MSG("Incoming:");
  ZN_TRACE_VALUE("value", value);
  std::string retValue =
      genOptionString(property, std::string(value == nullptr ? "" : value), prefix, separator);
  ZN_TRACE_LEAVE("ZnCMD::genOptionString(string,char*)");
  return retValue;
}

// ---------------------------------------------------------------------------
// JVM start-up and shutdown

void ZnCMD::startJVM() {
  ZN_TRACE_ENTER("ZnCMD::startJVM");
  ZN_TRACE_MSG("Setting heap size according to default values");
  const std::string minHeapSize = MIN_HEAP_SIZE;
  const std::string maxHeapSize = MAX_HEAP_SIZE;
  const std::string youngGenSize = YOUNG_GEN_SIZE;
  ZN_TRACE_VALUE("minHeapSize.c_str()", minHeapSize.c_str());
  ZN_TRACE_VALUE("maxHeapSize.c_str()", maxHeapSize.c_str());
  ZN_TRACE_VALUE("youngGenSize.c_str()", youngGenSize.c_str());

  JavaVMInitArgs initArgs;
  localVMargs(&initArgs);
  for (const JvmOptionRow& row : JVM_OPTION_ROWS) {
    if (row.onlyIfPresent == nullptr || getenv(row.onlyIfPresent) != nullptr) addOptionRow(row);
  }
#ifdef ZN_HARDENED_SETUID
  if (setuidguard::runsForAnotherUser()) addJVMOption(setuidguard::DISABLE_ATTACH_OPTION);
#endif
  initArgs.version = JNI_VERSION_1_4;
  initArgs.nOptions = myOptionCount;
  initArgs.options = myOptions;
  initArgs.ignoreUnrecognized = JNI_TRUE;

  ZN_TRACE_MSG("Start the JVM.");
  if (JNI_CreateJavaVM(&myJVM, reinterpret_cast<void**>(&myEnv), &initArgs) < 0) {
    fail(msg::CANNOT_CREATE_JVM + myName + msg::FULL_STOP);
  }
  ZN_TRACE_MSG("JVM successfully started");
  ZN_TRACE_LEAVE("ZnCMD::startJVM");
}

void ZnCMD::addOptionRow(const JvmOptionRow& row) {
  auto generate = [&](auto value) {
    addJVMOption(genOptionString(row.property, std::move(value), row.prefix, row.separator));
  };
  switch (row.source) {
    case OptionSource::Literal:
      addJVMOption(row.text);
      break;
    case OptionSource::SizeValue:
      generate(std::string(row.text));
      break;
    case OptionSource::FixedValue:
      generate(const_cast<char*>(row.text));
      break;
    case OptionSource::EnvValue:
      generate(getenv(row.text));
      break;
    case OptionSource::BasePath:
      generate(readBasePath());
      break;
    case OptionSource::ClassPath:
      generate(readClassPath());
      break;
    case OptionSource::JavaHome:
      generate(readJavaHome());
      break;
    case OptionSource::ShlibPath:
      generate(readShlibPath());
      break;
    case OptionSource::InstallFile: {
      std::string path = row.text;
      insertInstallDir(path);
      generate(path + row.tail);
      break;
    }
    case OptionSource::LogFile: {
      std::string dir = row.text;
      insertInstallDir(dir);
      addJVMOption(row.prefix + dir + myName + row.tail);
      break;
    }
    case OptionSource::Tokens:
      if (const char* value = getenv(row.onlyIfPresent)) {
        for (const std::string& token : jvmOptionTokens(value)) addJVMOption(token);
      }
      break;
  }
}

void ZnCMD::endJVM() {
  ZN_TRACE_ENTER("ZnCMD::endJVM");
  myJVM->DestroyJavaVM();
  ZN_TRACE_LEAVE("ZnCMD::endJVM");
}

// ---------------------------------------------------------------------------
// Java invocation

jobjectArray ZnCMD::convertArgs(int argc, char** argv) {
  ZN_TRACE_ENTER("ZnCMD::convertArgs");
  jclass stringClass = myEnv->FindClass(STRING_CLASS);
  if (stringClass == nullptr) fail(msg::NO_STRING_CLASS + myName + msg::FULL_STOP);
  jobjectArray jStringArr = myEnv->NewObjectArray(argc, stringClass, nullptr);
  if (jStringArr == nullptr) fail(msg::NO_STRING_ARRAY + myName + msg::FULL_STOP);
  for (int i = 0; i < argc; ++i) {
    jstring element = convertString(argv[i]);
    myEnv->SetObjectArrayElement(jStringArr, i, element);
    myEnv->DeleteLocalRef(element);
  }
  ZN_TRACE_LEAVE("ZnCMD::convertArgs");
  return jStringArr;
}

// A failing String(byte[]) constructor (a null result or a pending
// exception) ends the command like the other conversion failures: the
// exception is printed and the process exits with status 1, so main never
// sees a null argument.
jstring ZnCMD::convertString(char* s) {
  ZN_TRACE_ENTER("ZnCMD::ConvertString");
  const jsize len = static_cast<jsize>(strlen(s));
  jclass stringClass = myEnv->FindClass(STRING_CLASS);
  if (stringClass == nullptr) fail(msg::NO_STRING_CLASS + myName + msg::FULL_STOP);
  jmethodID constructor =
      myEnv->GetMethodID(stringClass, STRING_CONSTRUCTOR, STRING_FROM_BYTES_SIGNATURE);
  if (constructor == nullptr) fail(msg::NO_STRING_CONSTRUCTOR + myName + msg::FULL_STOP);
  jbyteArray bytes = myEnv->NewByteArray(len);
  if (bytes == nullptr) fail(msg::NO_BYTE_ARRAY + myName + msg::FULL_STOP);
  myEnv->SetByteArrayRegion(bytes, 0, len, reinterpret_cast<const jbyte*>(s));
  if (myEnv->ExceptionOccurred()) {
    myEnv->ExceptionDescribe();
    fail(msg::BYTE_ARRAY_EXCEPTION + myName + msg::FULL_STOP);
  }
  auto string = static_cast<jstring>(myEnv->NewObject(stringClass, constructor, bytes));
  if (string == nullptr || myEnv->ExceptionCheck()) {
    if (myEnv->ExceptionCheck()) myEnv->ExceptionDescribe();
    fail(msg::STRING_CONSTRUCTION_FAILED + myName + msg::FULL_STOP);
  }
  myEnv->DeleteLocalRef(bytes);
  ZN_TRACE_LEAVE("ZnCMD::ConvertString");
  return string;
}

void ZnCMD::callMain(int argc, char** argv) {
  ZN_TRACE_ENTER("ZnCMD::callMain");
  ZN_TRACE_MSG("Find the Class.");
  const std::string className = getClassToLoad();
  ZN_TRACE_VALUE("getClassToLoad().c_str()", className.c_str());
  jclass mainClass = myEnv->FindClass(className.c_str());
  ZN_TRACE_MSG("Got a Class.");
  if (mainClass == nullptr) {
    ZN_TRACE_MSG("Class not found");
    fprintf(stderr, "%s%s%s\n", msg::NOT_INITIALIZED_PREFIX, ZnVersion::getProductName().c_str(),
            msg::NOT_INITIALIZED);
    fflush(stderr);
    fprintf(stderr, "%s\n", msg::RUN_INITCONFIG);
    fflush(stderr);
    ZN_TRACE_VALUE("myName.c_str()", myName.c_str());
    errorExit(1, nullptr);
  }

  ZN_TRACE_MSG("Find the main method.");
  char methodName[sizeof MAIN_METHOD];
  char signature[sizeof MAIN_SIGNATURE];
  std::memcpy(methodName, MAIN_METHOD, sizeof MAIN_METHOD);
  std::memcpy(signature, MAIN_SIGNATURE, sizeof MAIN_SIGNATURE);
  jmethodID mainMethod = myEnv->GetStaticMethodID(mainClass, methodName, signature);
  if (mainMethod == nullptr) {
    if (myEnv->ExceptionOccurred()) myEnv->ExceptionDescribe();
    fail(msg::ERROR_PREFIX + myName + msg::CANNOT_FIND_METHOD + methodName + signature +
         msg::IN_THE_CLASS + className + msg::FULL_STOP);
  }

  ZN_TRACE_MSG("Converting Arguments.");
  jobjectArray args = convertArgs(argc, argv);
  ZN_TRACE_VALUE("argc", static_cast<long>(argc));
  for (int i = 0; i < argc; ++i) {
    ZN_TRACE_VALUE("i", static_cast<long>(i));
    ZN_TRACE_VALUE("argv[i]", argv[i]);
  }
  ZN_TRACE_MSG("Start the java main method now.  If a daemon logs again there is an Error.");
  ZN_TRACE_MSG("Calling main() now.");
  ZN_TRACE_MSG("  (NOTE: If this is a daemon running in the foreground, I may not log again.)");
  myEnv->CallStaticVoidMethod(mainClass, mainMethod, args);
  if (myEnv->ExceptionOccurred()) {
    myEnv->ExceptionDescribe();
    myEnv->ExceptionClear();
    fail(msg::ERROR_PREFIX + myName + msg::MAIN_EXCEPTION);
  }
  ZN_TRACE_LEAVE("ZnCMD::callMain");
}

// setKeys() runs while the process still holds the privileges it was started
// with. An exception thrown by setKeys() means the keys were not handed over:
// the exception is printed, the privileges are given up, and the command ends
// with status 1 before any command code runs.
void ZnCMD::readKeys() {
  ZN_TRACE_ENTER("ZnCMD::readKeys");
  ZN_TRACE_MSG("Look for authenticate class.");
  jclass authClass = myEnv->FindClass(AUTHENTICATE_CLASS);
  if (authClass == nullptr) fail(msg::ERROR_PREFIX + myName + msg::NO_AUTH_CLASS);
  ZN_TRACE_MSG("Get ketKey method.");
  jmethodID setKeys = myEnv->GetStaticMethodID(authClass, SET_KEYS_METHOD, SET_KEYS_SIGNATURE);
  if (setKeys == nullptr) fail(msg::ERROR_PREFIX_WIDE + myName + msg::NO_SET_KEYS);
  ZN_TRACE_MSG("Call authenticate.setKeys().");
  myEnv->CallStaticVoidMethod(authClass, setKeys, nullptr);
  const bool setKeysFailed = myEnv->ExceptionCheck();
  if (setKeysFailed) {
    myEnv->ExceptionDescribe();
    myEnv->ExceptionClear();
  }
  resetUID();
  if (setKeysFailed) fail(msg::ERROR_PREFIX + myName + msg::SET_KEYS_EXCEPTION);
  ZN_TRACE_LEAVE("ZnCMD::readKeys");
}
