// The launcher installed set-user-id root and started by an ordinary user.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "LauncherTree.h"

namespace zntest {
namespace {

constexpr uid_t USER = 65534;  // nobody
constexpr gid_t GROUP = 65534;

class SetuidTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "installing a set-user-id program needs root";
    launcher = tree.base() + "/bin/znlauncher";
    writeFile(launcher, readFile(ZN_LAUNCHER_PATH));
    ASSERT_EQ(chown(launcher.c_str(), 0, 0), 0);
    ASSERT_EQ(chmod(launcher.c_str(), 04755), 0);
    tree.setLauncher(launcher);
  }
  LauncherTree tree;
  std::string launcher;
};

TEST_F(SetuidTest, KeysWithRootThenCommandAsTheUser) {
  const std::string user = std::to_string(USER);
  const std::string asUser = user + " " + user + " " + user + " " + user;
  const std::string keysAsRoot = user + " 0 0 0";
  struct Case {
    const char* command;
    std::string keysUid;  // empty: no key hand-over
    std::string mainUid;
    const char* umask;
  };
  const Case cases[] = {
      {"znexec", keysAsRoot, asUser, "0022"}, {"zndbgui", keysAsRoot, asUser, "0022"},
      {"znpassword", "", asUser, "0022"},     {"orvex", "", asUser, "0022"},
      {"znmakekeys", "", asUser, "0022"},     {"zninit", "", keysAsRoot, "0077"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command);
    ProcessOptions options;
    options.uid = USER;
    options.gid = GROUP;
    options.umask = 077;
    ProcessResult result = tree.run(c.command, {}, {}, options);
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    Report report = tree.report();
    EXPECT_EQ(report.count("setKeys.uid"), c.keysUid.empty() ? 0u : 1u);
    if (!c.keysUid.empty()) {
      EXPECT_EQ(first(report, "setKeys.uid"), c.keysUid);
    }
    EXPECT_EQ(first(report, "main.uid"), c.mainUid);
    EXPECT_EQ(first(report, "main.umask"), c.umask);
  }
}

}  // namespace
}  // namespace zntest
