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

}  // namespace msg
