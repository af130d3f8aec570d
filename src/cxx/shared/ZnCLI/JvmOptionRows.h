// The options startJVM adds after the class's own (localVMargs), in the
// order the virtual machine reads them. Property rows whose value is empty
// still add an (empty) option and take one of the 40 places.
#pragma once

constexpr char MIN_HEAP_SIZE[] = "16m";
constexpr char MAX_HEAP_SIZE[] = "128m";
constexpr char YOUNG_GEN_SIZE[] = "8m";

// Where a row's value comes from.
enum class OptionSource {
  Literal,      // `text` is the whole option
  SizeValue,    // genOptionString with the string `text`
  FixedValue,   // genOptionString with the character string `text`
  EnvValue,     // genOptionString with getenv(`text`), possibly null
  BasePath,     // genOptionString with readBasePath()
  ClassPath,    // ... readClassPath()
  JavaHome,     // ... readJavaHome()
  ShlibPath,    // ... readShlibPath()
  InstallFile,  // genOptionString with the expansion of `text`, then `tail`
  LogFile,      // `prefix`, the expansion of `text`, the command name, `tail`
  Tokens,       // every token of the variable `onlyIfPresent`
};

struct JvmOptionRow {
  const char* onlyIfPresent;  // variable whose presence adds the row; null: always
  OptionSource source;
  const char* prefix;
  const char* property;
  const char* separator;
  const char* text;
  const char* tail;
};

namespace rows {
constexpr JvmOptionRow literal(const char* option) {
  return {nullptr, OptionSource::Literal, "", "", "", option, ""};
}
constexpr JvmOptionRow heapSize(const char* property, const char* size) {
  return {nullptr, OptionSource::SizeValue, "-X", property, "", size, ""};
}
constexpr JvmOptionRow property(const char* name, OptionSource source, const char* text = "",
                                const char* tail = "") {
  return {nullptr, source, "-D", name, "=", text, tail};
}
constexpr JvmOptionRow logFile(const char* prefix, const char* dir, const char* suffix) {
  return {nullptr, OptionSource::LogFile, prefix, "", "", dir, suffix};
}
constexpr JvmOptionRow ifPresent(const char* variable, JvmOptionRow row) {
  row.onlyIfPresent = variable;
  return row;
}
}  // namespace rows

using rows::heapSize;
using rows::ifPresent;
using rows::literal;
using rows::logFile;
using rows::property;

constexpr JvmOptionRow JVM_OPTION_ROWS[] = {
    heapSize("ms", MIN_HEAP_SIZE),
    heapSize("mx", MAX_HEAP_SIZE),
    heapSize("mn", YOUNG_GEN_SIZE),
    literal("-XX:SurvivorRatio=3"),
    literal("-XX:TargetSurvivorRatio=75"),
    literal("-XX:MinHeapFreeRatio=30"),
    literal("-XX:MaxHeapFreeRatio=50"),
    literal("-XX:+UseCMSCompactAtFullCollection"),
    property("sun.rmi.dgc.server.gcInterval", OptionSource::FixedValue, "1800000"),
    property("sun.rmi.dgc.client.gcInterval", OptionSource::FixedValue, "1800000"),
    property("zn.display", OptionSource::EnvValue, "DISPLAY"),
    property("zn.browser", OptionSource::EnvValue, "BROWSER"),
    property("ZN_BASE_DIR", OptionSource::BasePath),
    property("networkaddress.cache.ttl", OptionSource::FixedValue, "30"),
    property("java.class.path", OptionSource::ClassPath),
    property("java.home", OptionSource::JavaHome),
    property("java.library.path", OptionSource::ShlibPath),
    property("java.security.policy", OptionSource::InstallFile,
             "%b/etc/opt/zn/"
             "config/",
             "java.policy"),
    property("zn.codeBase", OptionSource::InstallFile,
             "%b/opt/zn/"
             "lib/",
             "*"),
    property("java.protocol.handler.pkgs", OptionSource::FixedValue, "org.apache.naming.resources"),
    literal("-ea"),
    ifPresent("ZN_VERBOSE_TRACE",
              {nullptr, OptionSource::FixedValue, "-", "verbose", ":", "class", ""}),
    ifPresent("ZN_GC_TRACE", logFile("-Xloggc:",
                                     "%b/var/opt/zn/"
                                     "logs/",
                                     ".gc.log")),
    ifPresent("ZN_EPROF_TRACE", logFile("-Xrunhprof:file=",
                                        "%b/var/opt/zn/"
                                        "logs/",
                                        ".eprof")),
    ifPresent("ZN_JVM_OPTS", {nullptr, OptionSource::Tokens, "", "", "", "", ""}),
    ifPresent("FOREGROUND", literal("-DFOREGROUND=true")),
    property("zn.path", OptionSource::EnvValue, "PATH"),
};
