// The command object's own operations against real directories, the real
// environment, the real system-log socket and real exits.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "UnitSupport.h"

namespace zntest {
namespace {

using Env = std::map<std::string, std::optional<std::string>>;

TEST(BasePath, ReadOnceNonEmptyThenCached) {
  ProbeCMD command;
  {
    ScopedEnv env({{"ZN_BASE_DIR", std::nullopt}});
    EXPECT_EQ(command.readBasePath(), "");
  }
  {
    TraceCapture trace(1);
    ScopedEnv env({{"ZN_BASE_DIR", ""}});
    EXPECT_EQ(command.readBasePath(), "");
    EXPECT_EQ(trace.lines(),
              (std::vector<std::string>{std::string(CMD_UNIT) + ":     szPATH=''",
                                        std::string(CMD_UNIT) + ":     myBasePath.c_str()=''"}));
  }
  ScopedEnv env({{"ZN_BASE_DIR", "/mnt/alt"}});
  std::string path = "%b/opt/zn/lib/";
  command.insertInstallDir(path);
  EXPECT_EQ(path, "/mnt/alt/opt/zn/lib/");
  setenv("ZN_BASE_DIR", "/elsewhere", 1);
  EXPECT_EQ(command.readBasePath(), "/mnt/alt");
}

TEST(LibraryPathAndJavaHome, FromTheTreeOrTheEnvironment) {
  const std::string tail = ":/opt/tessaly/lib";
  const std::string defaults =
      "/b/opt/zn/j2re/lib/i386/:/b/opt/zn/j2re/lib/i386/server:/b/opt/zn/j2re/lib/i386/"
      "native_threads:/b/opt/zn/j2re/lib/i386/hotspot:/b/opt/zn/lib/:/b/opt/zn/j2re/lib/:/usr/lib";
  struct Case {
    Env env;
    std::string libraryPath, javaHome, firstLibraryMessage;
  };
  const Case cases[] = {
      {{}, defaults + tail, "/b/opt/zn/j2re/", "ZN_USE_ENV is not set"},
      {{{"LD_LIBRARY_PATH", "/x"}, {"JAVA_HOME", "/j"}},
       defaults + tail,
       "/b/opt/zn/j2re/",
       "ZN_USE_ENV is not set"},
      {{{"ZN_USE_ENV", ""}, {"LD_LIBRARY_PATH", "/x:/y:%b"}, {"JAVA_HOME", "/usr/java/j2re"}},
       "/x:/y:%b" + tail,
       "/usr/java/j2re",
       "ZN_USE_ENV is set - using external shared library path"},
      {{{"ZN_USE_ENV", "0"}, {"LD_LIBRARY_PATH", ""}, {"JAVA_HOME", ""}},
       "/opt/tessaly/lib",
       "",
       "ZN_USE_ENV is set - using external shared library path"},
      {{{"ZN_USE_ENV", "yes"}},
       defaults + tail,
       "/b/opt/zn/j2re/",
       "Library path does not appear to be set.  Setting to default."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.libraryPath);
    Env env = {{"ZN_BASE_DIR", "/b"},
               {"ZN_USE_ENV", std::nullopt},
               {"LD_LIBRARY_PATH", std::nullopt},
               {"JAVA_HOME", std::nullopt}};
    for (const auto& [name, value] : c.env) env[name] = value;
    ScopedEnv scoped(env);
    ProbeCMD command;
    TraceCapture trace(1);
    EXPECT_EQ(command.readShlibPath(), c.libraryPath);
    EXPECT_EQ(trace.lines().front(), std::string(CMD_UNIT) + ":     " + c.firstLibraryMessage);
    EXPECT_EQ(trace.lines().back(), std::string(CMD_UNIT) + ":     " + c.libraryPath);
    EXPECT_EQ(command.readJavaHome(), c.javaHome);
  }
}

class ClassPathTest : public ::testing::Test {
 protected:
  void SetUp() override {
    base = tree.path();
    makeDirs(base + "/opt/zn/lib");
    makeDirs(base + "/opt/zn/j2re/lib");
  }
  void touch(const std::string& path) { writeFile(base + path, ""); }
  TempDir tree;
  std::string base;
};

TEST_F(ClassPathTest, ArchivesInDirectoryOrderWithFixedPieces) {
  touch("/opt/zn/lib/a.jar");
  touch("/opt/zn/lib/zn.jar");
  touch("/opt/zn/j2re/lib/rt.jar");
  std::string libs;
  for (const std::string& name : directoryOrder(base + "/opt/zn/lib/")) {
    if (name != "." && name != "..") libs += ":" + base + "/opt/zn/lib/" + name;
  }
  const std::string tail = ":/opt/tessaly/webapps/ROOT/ui/jsp/resources:/opt/tessaly/lib";
  struct Case {
    Env env;
    std::string prefix;
  };
  const Case cases[] = {
      {{}, ""},
      {{{"ZN_USE_ENV", ""}}, ""},
      {{{"ZN_USE_ENV", ""}, {"CLASSPATH", ""}}, ""},
      {{{"CLASSPATH", "/ignored.jar"}}, ""},
      {{{"ZN_USE_ENV", ""}, {"CLASSPATH", "/x.jar:%b/y.jar"}}, "/x.jar:" + base + "/y.jar:"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.prefix);
    Env env = {{"ZN_BASE_DIR", base}, {"ZN_USE_ENV", std::nullopt}, {"CLASSPATH", std::nullopt}};
    for (const auto& [name, value] : c.env) env[name] = value;
    ScopedEnv scoped(env);
    ProbeCMD command;
    EXPECT_EQ(command.readClassPath(), c.prefix + base + "/opt/zn/lib/zn.jar" + libs + ":" + base +
                                           "/opt/zn/j2re/lib/rt.jar" + tail);
  }
  makeDirs(base + "/opt/zn/patch");
  touch("/opt/zn/patch/p.jar");
  ScopedEnv env({{"ZN_BASE_DIR", base}});
  ProbeCMD command;
  EXPECT_EQ(command.readClassPath().rfind(
                base + "/opt/zn/patch/p.jar:" + base + "/opt/zn/lib/zn.jar:", 0),
            0u);
}

TEST_F(ClassPathTest, MissingDirectoriesContributeNothing) {
  ScopedEnv env({{"ZN_BASE_DIR", base + "/nowhere"}, {"ZN_USE_ENV", std::nullopt}});
  ProbeCMD command;
  EXPECT_EQ(command.readClassPath(), base +
                                         "/nowhere/opt/zn/lib/zn.jar:/opt/tessaly/webapps/ROOT/"
                                         "ui/jsp/resources:/opt/tessaly/lib");
}

TEST_F(ClassPathTest, ScanMatchesNamesOnlyAndTracesEachEntry) {
  const std::string dir = base + "/scan/";
  makeDirs(dir + "d.jar");
  for (const char* name : {"x.jar", "x.JAR", "x.jar.old", "x.jarx", "xjar", "x.jar.jar", ".jar"}) {
    writeFile(dir + name, "");
  }
  std::vector<std::string> matched;
  for (const std::string& name : directoryOrder(dir)) {
    if (name == "x.jar" || name == ".jar" || name == "d.jar") matched.push_back(dir + name);
  }
  std::string expected;
  for (const std::string& path : matched) expected += (expected.empty() ? "" : ":") + path;

  ProbeCMD command;
  TraceCapture trace(ALL_LEVELS);
  EXPECT_EQ(command.getFilesFromDir(dir, "jar"), expected);
  std::vector<std::string> lines = trace.lines();
  size_t indexLines = 0, entryLines = 0;
  for (const std::string& line : lines) {
    indexLines += line.find("index='.jar'") != std::string::npos;
    entryLines += line.find("get filename.") != std::string::npos;
  }
  EXPECT_EQ(indexLines, 3u);
  EXPECT_EQ(entryLines, 10u);  // eight names, "." and ".."
  EXPECT_EQ(lines.back().find(":Leaving  ZnCMD::getFilesFromDir() at "), strlen(CMD_UNIT));
  EXPECT_EQ(command.getFilesFromDir(base + "/missing/", "jar"), "");
}

TEST(OptionList, FortyOptionsThenTheProcessEnds) {
  ProbeCMD command;
  std::string text = "-Dfirst";
  command.addJVMOption(text);
  text = "changed";  // the stored copy is private
  command.addJVMOption("");
  command.addJVMOption("-Dfirst");
  EXPECT_EQ(command.options(), (std::vector<std::string>{"-Dfirst", "", "-Dfirst"}));
  for (int i = 3; i < 40; ++i) command.addJVMOption("-Dn=" + std::to_string(i));
  EXPECT_EQ(command.myOptionCount, 40);
  EXPECT_EQ(command.myOptions[39].extraInfo, nullptr);
  EXPECT_EXIT(command.addJVMOption("-Dforty-one"), ::testing::ExitedWithCode(1),
              "^ZnDaemon::addJVMOption: Insufficient space for option\n$");
}

TEST(OptionList, GenOptionStringJoinsOrYieldsNothing) {
  struct Case {
    const char* property;
    const char* value;  // null: the character overload with a null pointer
    const char* prefix;
    const char* separator;
    const char* result;
  };
  const Case cases[] = {
      {"ms", "64m", "-X", "", "-Xms64m"},
      {"java.home", "/opt/zn/j2re/", "-D", "=", "-Djava.home=/opt/zn/j2re/"},
      {"verbose", "class", "-", ":", "-verbose:class"},
      {"zn.display", "", "-D", "=", ""},
      {"zn.display", nullptr, "-D", "=", ""},
  };
  for (const Case& c : cases) {
    ProbeCMD command;
    if (c.value != nullptr) {
      EXPECT_EQ(command.genOptionString(c.property, std::string(c.value), c.prefix, c.separator),
                c.result);
    }
    std::string copy = c.value ? c.value : "";
    TraceCapture trace(1);
    EXPECT_EQ(
        command.genOptionString(c.property, c.value ? copy.data() : nullptr, c.prefix, c.separator),
        c.result);
    EXPECT_EQ(trace.lines().at(1),
              std::string(CMD_UNIT) + ":     value='" + (c.value ? c.value : "<NULL>") + "'");
  }
}

TEST(Privileges, ResetAsRootChangesNothingAndMaskIs022) {
  ProbeCMD command;
  command.origUID = getuid();
  const uid_t before = geteuid();
  command.resetUID();
  EXPECT_EQ(geteuid(), before);

  TempDir dir;
  const mode_t old = umask(0);
  command.setFilePermissions();
  const std::string file = dir.path() + "/f";
  FILE* created = fopen(file.c_str(), "w");  // mode 0666 before the mask
  ASSERT_NE(created, nullptr);
  fclose(created);
  struct stat info;
  ASSERT_EQ(stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);
  umask(old);
}

TEST(ErrorExit, MessageToStandardErrorAndSystemLogVerbatim) {
  SyslogListener syslog;
  if (!syslog.ready()) GTEST_SKIP() << syslog.whyNotReady();
  struct Case {
    const char* message;
    int code;
  };
  for (const Case& c :
       {Case{"ERROR:   100% done %s %n %%", 1}, Case{"plain", 3}, Case{nullptr, 1}}) {
    SCOPED_TRACE(c.message ? c.message : "(null)");
    ProbeCMD command;
    const std::string expected = c.message ? std::string(c.message) + "\n" : "";
    EXPECT_EXIT(command.errorExit(c.code, c.message), ::testing::ExitedWithCode(c.code),
                exactly(expected));
    std::vector<std::string> logged = syslog.drain();
    if (c.message == nullptr) {
      EXPECT_TRUE(logged.empty());
      continue;
    }
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(parseSyslog(logged[0]).message, c.message);
    EXPECT_EQ(parseSyslog(logged[0]).priority, 11);
  }
}

}  // namespace
}  // namespace zntest
