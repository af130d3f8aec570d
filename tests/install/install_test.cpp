// The installed command names against the compiled tables, the manual page
// against the tables and the variables the launcher reads, and installs
// (staged with DESTDIR, and under a relocated prefix) that run commands.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <set>

#include "CommandTables.h"
#include "InstallLayout.h"
#include "JvmOptionRows.h"
#include "LauncherEnvironment.h"
#include "TestSupport.h"

namespace zntest {
namespace {

// The rows the lookup can select: the command name folded to lower case
// finds the row itself.
std::vector<const CommandRow*> reachableRows() {
  std::vector<const CommandRow*> rows;
  for (const CommandTable& table : COMMAND_TABLES) {
    for (size_t i = 0; i < table.rowCount; ++i) {
      std::string key = table.rows[i].name;
      std::transform(key.begin(), key.end(), key.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      if (findCommand(key.c_str()).row == &table.rows[i]) rows.push_back(&table.rows[i]);
    }
  }
  return rows;
}

TEST(CommandNames, OneLinkForEveryRowTheLookupCanSelect) {
  std::vector<std::string> installed = installedCommandNames();
  std::set<std::string> reachable;
  for (const CommandRow* row : reachableRows()) reachable.insert(row->name);
  EXPECT_EQ(std::set<std::string>(installed.begin(), installed.end()), reachable);
  EXPECT_EQ(installed.size(), reachable.size()) << "a name is installed twice";
  EXPECT_EQ(installed.size(), 36u);
}

// The page as written, without the break points that long class names carry.
std::string manPage() {
  std::string page = readFile(ZN_MAN_PAGE);
  for (size_t at = page.find("\\:"); at != std::string::npos; at = page.find("\\:", at)) {
    page.erase(at, 2);
  }
  return page;
}

TEST(ManPage, ListsEveryCommandWithItsClass) {
  const std::string page = manPage();
  for (const CommandRow* row : reachableRows()) {
    EXPECT_NE(page.find(std::string(".B ") + row->name + "\n" + row->classToLoad + "\n"),
              std::string::npos)
        << row->name;
  }
}

TEST(ManPage, DescribesEveryVariableTheLauncherReads) {
  std::set<std::string> variables = {USE_ENV,
                                     JAVA_HOME,
                                     BASE_DIR_ENV_VAR,
                                     SHOW_JVM_OPTS_ENV_VAR,
                                     LIBRARY_PATH_ENV_VAR,
                                     CLASS_PATH_ENV_VAR,
                                     DISPLAY_ENV_VAR,
                                     "ZN_DTRACE",
                                     "LC_ALL"};
  for (const JvmOptionRow& row : JVM_OPTION_ROWS) {
    if (row.onlyIfPresent != nullptr) variables.insert(row.onlyIfPresent);
    if (row.source == OptionSource::EnvValue) variables.insert(row.text);
  }
  const std::string page = manPage();
  for (const std::string& variable : variables) {
    EXPECT_NE(page.find(".TP\n.B " + variable + "\n"), std::string::npos) << variable;
  }
}

std::map<std::string, std::string> keyValues(const std::string& out) {
  std::map<std::string, std::string> values;
  for (const std::string& line : splitLines(out)) {
    size_t equals = line.find('=');
    if (equals != std::string::npos)
      values.emplace(line.substr(0, equals), line.substr(equals + 1));
  }
  return values;
}

std::map<std::string, std::string> commandEnv(const std::string& base) {
  return {{"PATH", "/usr/bin:/bin"},
          {"LANG", "C.UTF-8"},
          {"ZN_BASE_DIR", base},
          {"ASAN_OPTIONS", "detect_leaks=0:handle_segv=0:allow_user_segv_handler=1"}};
}

struct InstallCase {
  const char* label;
  bool staged;  // DESTDIR below the standard prefix; otherwise --prefix
};

void PrintTo(const InstallCase& installCase, std::ostream* out) {
  *out << installCase.label;
}

class InstallTest : public ::testing::TestWithParam<InstallCase> {
 protected:
  // Installs the build into `dir` and returns the base of the tree there.
  std::string install() {
    std::map<std::string, std::string> env = {{"PATH", "/usr/bin:/bin"}};
    ProcessOptions options;
    options.args = {"--install", ZN_BUILD_DIR, "--prefix", "/"};
    if (GetParam().staged) {
      env["DESTDIR"] = dir.path();
    } else {
      options.args.back() = dir.path();
    }
    options.env = env;
    ProcessResult result = runProcess(ZN_CMAKE, options);
    EXPECT_EQ(result.exitStatus, 0) << result.out << result.err;
    return dir.path();
  }
  TempDir dir{"zninstall"};
};

TEST_P(InstallTest, LaysOutTheTree) {
  const std::string root = install();
  EXPECT_EQ(differencesFromExpected(readTree(root)), std::vector<std::string>{});
  EXPECT_EQ(unresolvedCommandLinks(root), std::vector<std::string>{});
}

TEST_P(InstallTest, RunsCommandsFromTheInstalledTree) {
  const std::string root = install();
  for (const char* jar : {"commands", "auth"}) {
    ASSERT_EQ(symlink((std::string(ZN_FIXTURE_JAR_DIR) + "/" + jar + ".jar").c_str(),
                      (root + "/opt/zn/lib/" + jar + ".jar").c_str()),
              0);
  }
  struct Launch {
    const char* command;
    std::vector<std::string> args;
    const char* javaClass;
    std::vector<std::string> javaArgs;
  };
  const Launch launches[] = {
      {"znexec", {"-l"}, "com/brennic/zn/cli/ZnCommandDispatcher", {"znexec", "-l"}},
      {"orvex", {"a b"}, "com/brennic/zn/config/ZnRC", {"a b"}},
      {"znmakekeys", {}, "com/brennic/zn/utilities/authenticate/ZnKeyPairGen", {}},
  };
  for (const Launch& launch : launches) {
    SCOPED_TRACE(launch.command);
    ProcessOptions options;
    options.args = launch.args;
    options.env = commandEnv(root);
    ProcessResult result = runProcess(root + "/opt/zn/bin/" + launch.command, options);
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    auto values = keyValues(result.out);
    EXPECT_EQ(values["class"], launch.javaClass);
    ASSERT_EQ(values["argc"], std::to_string(launch.javaArgs.size()));
    for (size_t i = 0; i < launch.javaArgs.size(); ++i) {
      EXPECT_EQ(values["arg." + std::to_string(i)], hexOf(launch.javaArgs[i]));
    }
    EXPECT_EQ(values["prop.java.home"], root + "/opt/zn/j2re/");
    EXPECT_NE(values["prop.java.class.path"].find(root + "/opt/zn/lib/commands.jar"),
              std::string::npos);
  }
}

INSTANTIATE_TEST_SUITE_P(Install, InstallTest,
                         ::testing::Values(InstallCase{"Destdir", true},
                                           InstallCase{"RelocatedPrefix", false}),
                         [](const auto& testInfo) { return std::string(testInfo.param.label); });

}  // namespace
}  // namespace zntest
