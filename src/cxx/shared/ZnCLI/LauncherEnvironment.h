// Environment variables the launcher reads, and the install-tree paths it
// hands to the virtual machine. Paths starting with "%b" are templates:
// insertInstallDir replaces the marker with the install base.
#pragma once

constexpr char USE_ENV[] = "ZN_USE_ENV";
constexpr char JAVA_HOME[] = "JAVA_HOME";
constexpr char BASE_DIR_ENV_VAR[] = "ZN_BASE_DIR";
constexpr char SHOW_JVM_OPTS_ENV_VAR[] = "ZN_SHOW_JVM_OPTS";
constexpr char LIBRARY_PATH_ENV_VAR[] = "LD_LIBRARY_PATH";
constexpr char CLASS_PATH_ENV_VAR[] = "CLASSPATH";
constexpr char DISPLAY_ENV_VAR[] = "DISPLAY";
constexpr char JVM_OPTS_ENV_VAR[] = "ZN_JVM_OPTS";

constexpr char INSTALL_DIR_MARKER[] = "%b";

constexpr char DEFAULT_SHLIB_PATH[] =
    "%b/opt/zn/j2re/lib/i386/:%b/opt/zn/j2re/lib/i386/server:"
    "%b/opt/zn/j2re/lib/i386/native_threads:%b/opt/zn/j2re/lib/i386/hotspot:"
    "%b/opt/zn/lib/:%b/opt/zn/j2re/lib/:/usr/lib";
constexpr char ADDITIONAL_SHLIB_DIR[] = "/opt/tessaly/lib";
constexpr char DEFAULT_JAVA_HOME[] = "%b/opt/zn/j2re/";

constexpr char PATCH_DIR[] = "%b/opt/zn/patch/";
constexpr char LIB_DIR[] = "%b/opt/zn/lib/";
constexpr char RUNTIME_LIB_DIR[] = "%b/opt/zn/j2re/lib/";
constexpr char MAIN_ARCHIVE[] = "zn.jar";
constexpr char ARCHIVE_EXTENSION[] = "jar";
constexpr char CLASS_PATH_TAIL[] = "/opt/tessaly/webapps/ROOT/ui/jsp/resources:/opt/tessaly/lib";

constexpr char AUTHENTICATE_CLASS[] = "com/brennic/zn/utilities/authenticate/ZnAuthenticate";
constexpr char SET_KEYS_METHOD[] = "setKeys";
constexpr char SET_KEYS_SIGNATURE[] = "()V";
constexpr char MAIN_METHOD[] = "main";
constexpr char MAIN_SIGNATURE[] = "([Ljava/lang/String;)V";
constexpr char STRING_CLASS[] = "java/lang/String";
constexpr char STRING_CONSTRUCTOR[] = "<init>";
constexpr char STRING_FROM_BYTES_SIGNATURE[] = "([B)V";

// Joins class-path entries.
extern const char pathSeparator[];
