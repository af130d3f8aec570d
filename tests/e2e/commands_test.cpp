// Every command name runs its own Java class with the right arguments,
// keys and privileges, through links as an operator installs them.
#include <gtest/gtest.h>

#include "LauncherTree.h"

namespace zntest {
namespace {

class CommandsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { tree = new LauncherTree(); }
  static void TearDownTestSuite() { delete tree; }
  static LauncherTree* tree;
};
LauncherTree* CommandsTest::tree = nullptr;

TEST_F(CommandsTest, EveryCommandRunsItsClassWithItsArguments) {
  const std::vector<std::string> args = {"-l", "two words", "", "\xc3\xa9=%s"};
  ProcessOptions options;
  options.umask = 077;
  for (const CommandSpec& command : ALL_COMMANDS) {
    SCOPED_TRACE(command.name);
    ProcessResult result = tree->run(command.name, args, {}, options);
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    Report report = tree->report();
    EXPECT_EQ(first(report, "class"), command.javaClass);

    std::vector<std::string> expected = args;
    if (command.passesName) expected.insert(expected.begin(), command.name);
    ASSERT_EQ(first(report, "argc"), std::to_string(expected.size()));
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(first(report, "arg." + std::to_string(i)), hexOf(expected[i])) << i;
    }
    EXPECT_EQ(report.count("setKeys.uid"), command.handsOverKeys ? 1u : 0u);
    EXPECT_EQ(first(report, "main.umask"), command.dropsPrivileges ? "0022" : "0077");
    EXPECT_EQ(first(report, "assertions"), "true");
    const bool interpreted =
        first(report, "prop.java.vm.info").find("interpreted") != std::string::npos;
    EXPECT_EQ(interpreted, std::string(command.commandClass) == "ZnCLI");
  }
}

TEST_F(CommandsTest, NameIsTakenFromAnyPathAndAnyAsciiCase) {
  struct Case {
    std::string argv0;
    std::string javaArg0;
  };
  const std::string link = tree->commandPath("znexec");
  const Case cases[] = {
      {link, "znexec"},
      {"/some/where/ZnExec", "ZnExec"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.argv0);
    ProcessOptions options;
    options.argv0 = c.argv0;
    ProcessResult result = tree->run(link, {"x"}, {}, options);
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    Report report = tree->report();
    EXPECT_EQ(first(report, "class"), "com/brennic/zn/cli/ZnCommandDispatcher");
    EXPECT_EQ(first(report, "arg.0"), hexOf(c.javaArg0));
    EXPECT_EQ(first(report, "arg.1"), hexOf("x"));
  }
}

TEST_F(CommandsTest, UnknownNamesExitOneWithoutAnyOutput) {
  const std::string link = tree->commandPath("znexec");
  const std::string names[] = {"znexecx", "dir/", "zninventoryDMI", std::string(300, 'z')};
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    ProcessOptions options;
    options.argv0 = name;
    ProcessResult result = tree->run(link, {}, {{"ZN_DTRACE", "0,31"}}, options);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(readFile(tree->reportPath()), "");
  }
}

TEST_F(CommandsTest, ZnnodeHidesTheDisplayFromJava) {
  struct Case {
    const char* argv0;
    const char* display;
  };
  for (const Case& c : {Case{"ZNNODE", "<unset>"}, Case{"znnode", "<unset>"}, Case{"znexec", ":7"},
                        Case{"orvex", ":7"}}) {
    SCOPED_TRACE(c.argv0);
    ProcessOptions options;
    options.argv0 = c.argv0;
    ASSERT_EQ(tree->run(tree->commandPath("znnode"), {}, {{"DISPLAY", ":7"}}, options).exitStatus,
              0);
    Report report = tree->report();
    EXPECT_EQ(first(report, "env.DISPLAY"), c.display);
    EXPECT_EQ(first(report, "prop.zn.display"), std::string(c.display) == ":7" ? ":7" : "<unset>");
  }
}

TEST_F(CommandsTest, NonDaemonThreadKeepsTheProcessUntilItEnds) {
  ProcessResult result = tree->run("znversion", {}, {{"ZN_TEST_MAIN", "thread"}});
  EXPECT_EQ(result.exitStatus, 0) << result.err;
  EXPECT_EQ(first(tree->report(), "thread"), "done");
}

}  // namespace
}  // namespace zntest
