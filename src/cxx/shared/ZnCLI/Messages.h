// Every text the launcher shows a user, in one place. Failure messages are
// built by concatenating these with the command name.
#pragma once

namespace msg {

constexpr char ERROR_PREFIX[] = "ERROR:   ";
// One blank more than ERROR_PREFIX, as the setKeys() lookup has always said.
constexpr char ERROR_PREFIX_WIDE[] = "ERROR:    ";
constexpr char FULL_STOP[] = ".";

constexpr char UNRECOGNIZED_COMMAND[] = "ERROR:   Unrecognized command name.";
constexpr char CANNOT_SET_UID[] = " cannot set the effective, real, and saved UID.";
constexpr char NO_OPTION_SPACE[] = "ZnDaemon::addJVMOption: Insufficient space for option";
constexpr char CANNOT_CREATE_JVM[] = "ERROR:   Cannot create Java Virtual Machine for ";

constexpr char NO_STRING_CLASS[] = "ERROR:   Cannot find class java/lang/String from ";
constexpr char NO_STRING_ARRAY[] = "ERROR:   Memory allocation error for jStringArr from ";
constexpr char NO_STRING_CONSTRUCTOR[] = "ERROR:   Cannot find java/lang/String constructor from ";
constexpr char NO_BYTE_ARRAY[] = "ERROR:   Cannot construct NewByteArray from ";
constexpr char BYTE_ARRAY_EXCEPTION[] = "ERROR:   Exception creating ByteArray from ";
constexpr char STRING_CONSTRUCTION_FAILED[] = "ERROR:   Cannot construct java/lang/String from ";

constexpr char NOT_INITIALIZED_PREFIX[] = "Error:   ";
constexpr char NOT_INITIALIZED[] = " might not be initialized.";
constexpr char RUN_INITCONFIG[] =
    "         Please run `zninitconfig -a` before executing this command.";
constexpr char CANNOT_FIND_METHOD[] = " cannot find the method ";
constexpr char IN_THE_CLASS[] = " in the class ";
constexpr char MAIN_EXCEPTION[] = " received an exception from Java Virtual Machine.";

constexpr char NO_AUTH_CLASS[] = " cannot find the ZnAuthenticate class.";
constexpr char NO_SET_KEYS[] = " cannot find the method ZnAuthenticate.setKeys().";
constexpr char SET_KEYS_EXCEPTION[] = " received an exception from ZnAuthenticate.setKeys().";

constexpr char OPTION_ECHO[] = "addJVMOption(): ";

// The hardened set-user-id launcher (SetuidGuard.h). A variable it ignores
// is reported as IGNORED_PREFIX + command name + IGNORED_IN_SETUID_RUN + one
// of the IGNORED_* texts.
constexpr char IGNORED_PREFIX[] = "WARNING: ";
constexpr char IGNORED_IN_SETUID_RUN[] = " is running set-user-id: ";
constexpr char IGNORED_JVM_OPTS[] = "ZN_JVM_OPTS is ignored (no JVM options from the environment).";
constexpr char IGNORED_USE_ENV[] =
    "ZN_USE_ENV is ignored (CLASSPATH, JAVA_HOME and LD_LIBRARY_PATH are not used).";
constexpr char IGNORED_BASE_DIR[] = "ZN_BASE_DIR is ignored (the standard install tree is used).";
constexpr char IGNORED_DTRACE[] = "ZN_DTRACE is ignored (no debug trace is written).";
// Failures of the complete privilege drop; they follow ERROR_PREFIX and the
// command name.
constexpr char CANNOT_SET_GROUPS[] = " cannot drop the supplementary groups.";
constexpr char CANNOT_SET_GID[] = " cannot set the effective, real, and saved GID.";
constexpr char ROOT_REGAINABLE[] = " could regain root privileges after giving them up.";
constexpr char IDS_LEFT[] = " still holds other user or group IDs after giving them up.";

}  // namespace msg
