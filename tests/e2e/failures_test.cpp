// Every failure of a launch: its exact message on standard error, its
// system-log entry where there is one, and exit status 1.
#include <gtest/gtest.h>
#include <unistd.h>

#include "LauncherTree.h"

namespace zntest {
namespace {

bool endsWith(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

struct FailureCase {
  const char* what;
  std::vector<std::string> libJars;
  std::vector<std::string> patchJars;
  const char* command;
  std::map<std::string, std::string> env;
  std::string message;     // the last line on standard error
  bool logged;             // the same text at LOG_ERR in the system log
  std::string exactError;  // when set, all of standard error
};

void PrintTo(const FailureCase& c, std::ostream* os) {
  *os << c.what;
}

const std::string NOT_INITIALIZED =
    "Error:   Orvex might not be initialized.\n"
    "         Please run `zninitconfig -a` before executing this command.\n";

const std::vector<std::string> ALL = {"commands", "auth"};

const FailureCase FAILURES[] = {
    {"class not found", {"auth"}, {}, "orvex", {}, "", false, NOT_INITIALIZED},
    {"instance main",
     ALL,
     {"nomain"},
     "orvex",
     {},
     "ERROR:   orvex cannot find the method main([Ljava/lang/String;)V in the class "
     "com/brennic/zn/config/ZnRC.",
     true,
     ""},
    {"main of another signature",
     ALL,
     {"nomain"},
     "znversion",
     {},
     "ERROR:   znversion cannot find the method main([Ljava/lang/String;)V in the class "
     "com/brennic/zn/utilities/version/ZnVersion.",
     true,
     ""},
    {"main throws",
     ALL,
     {},
     "znlog",
     {{"ZN_TEST_MAIN", "throw"}},
     "ERROR:   znlog received an exception from Java Virtual Machine.",
     true,
     ""},
    {"no authentication class",
     {"commands"},
     {},
     "znexec",
     {},
     "ERROR:   znexec cannot find the ZnAuthenticate class.",
     true,
     "ERROR:   znexec cannot find the ZnAuthenticate class.\n"},
    {"no setKeys()",
     ALL,
     {"auth-nosetkeys"},
     "znquery",
     {},
     "ERROR:    znquery cannot find the method ZnAuthenticate.setKeys().",
     true,
     "ERROR:    znquery cannot find the method ZnAuthenticate.setKeys().\n"},
    {"setKeys() throws",
     ALL,
     {},
     "znexec",
     {{"ZN_TEST_SETKEYS", "throw"}},
     "ERROR:   znexec received an exception from ZnAuthenticate.setKeys().",
     true,
     ""},
    {"virtual machine refuses its options",
     ALL,
     {},
     "znexec",
     {{"ZN_JVM_OPTS", "-Xss1k"}},
     "ERROR:   Cannot create Java Virtual Machine for znexec.",
     true,
     ""},
    {"a 41st option",
     ALL,
     {},
     "zninit",
     {{"ZN_JVM_OPTS", "-a -b -c -d -e -f -g -h -i -j -k -l -m -n -o -p -q -r"}, {"FOREGROUND", ""}},
     "ZnDaemon::addJVMOption: Insufficient space for option",
     true,
     "ZnDaemon::addJVMOption: Insufficient space for option\n"},
};

class FailuresTest : public ::testing::TestWithParam<FailureCase> {
 protected:
  static void SetUpTestSuite() { syslog = new SyslogListener(); }
  static void TearDownTestSuite() { delete syslog; }
  static SyslogListener* syslog;
};
SyslogListener* FailuresTest::syslog = nullptr;

TEST_P(FailuresTest, ReportsAndExitsOne) {
  const FailureCase& c = GetParam();
  if (!syslog->ready()) GTEST_SKIP() << syslog->whyNotReady();
  LauncherTree tree(c.libJars, c.patchJars);
  syslog->drain(0);
  ProcessResult result = tree.run(c.command, {"arg"}, c.env);
  EXPECT_EQ(result.exitStatus, 1) << result.err;
  if (!c.exactError.empty()) {
    EXPECT_EQ(result.err, c.exactError);
  } else {
    EXPECT_TRUE(endsWith(result.err, c.message + "\n")) << result.err;
  }
  std::vector<std::string> logged = syslog->drain();
  if (c.logged) {
    ASSERT_EQ(logged.size(), 1u);
    SyslogEntry entry = parseSyslog(logged[0]);
    EXPECT_EQ(entry.priority, 8 /* LOG_USER */ + 3 /* LOG_ERR */);
    EXPECT_EQ(entry.message, c.message);
  } else {
    EXPECT_TRUE(logged.empty()) << logged[0];
  }
  if (c.env.count("ZN_TEST_MAIN") == 0) {
    EXPECT_EQ(tree.report().count("class"), 0u);  // nothing of the command ran
  }
}

INSTANTIATE_TEST_SUITE_P(Launch, FailuresTest, ::testing::ValuesIn(FAILURES),
                         [](const auto& param) {
                           std::string name;
                           for (char c : std::string(param.param.what)) {
                             if (isalnum(static_cast<unsigned char>(c))) name += c;
                           }
                           return name;
                         });

TEST(PrivilegeFailure, FailedSetuidEndsTheCommand) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to make a user namespace here";
  LauncherTree tree;
  ProcessOptions options;
  // In a user namespace without a mapping the real user id is unmapped, and
  // setuid() to it fails.
  options.ownUserNamespace = true;
  ProcessResult result = tree.run("zngethostname", {}, {}, options);
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.err, "ERROR:   zngethostname cannot set the effective, real, and saved UID.\n");
  EXPECT_EQ(tree.report().count("class"), 0u);
}

}  // namespace
}  // namespace zntest
