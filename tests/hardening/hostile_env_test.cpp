// Set-user-id root launches by nobody with a hostile environment: each risky
// input is set to an attack that leaves a canary. The default launcher
// shows the documented behaviour (the canary runs as root, the trace follows
// a link); the hardened one lets no canary run and truncates nothing.
//
// Every launch runs in a private mount namespace (sandbox_exec) in which the
// test's install tree is /opt and its log tree /var/opt. The hardened
// launcher ignores ZN_BASE_DIR, so it needs a working install at the
// standard place; the namespace provides one without touching the
// machine's. The sandbox also knows the launcher's process id before it
// starts, so it plants a link or a file at the trace file's exact name.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "LauncherTree.h"
#include "Messages.h"

namespace zntest {
namespace {

constexpr uid_t NOBODY = 65534;
const std::string AS_NOBODY = "65534 65534 65534 65534";
const std::string KEYS_AS_ROOT = "65534 0 0 0";
constexpr char PRECIOUS[] = "precious\n";

struct Launcher {
  const char* name;
  const char* path;
  bool hardened;
};

const Launcher LAUNCHERS[] = {
    {"znlauncher", ZN_LAUNCHER_PATH, ZN_DEFAULT_IS_HARDENED == 1},
    {"znlauncher_hardened", ZN_HARDENED_LAUNCHER_PATH, true},
};

std::string ignoredLine(const char* why) {
  return std::string(msg::IGNORED_PREFIX) + "znexec" + msg::IGNORED_IN_SETUID_RUN + why + "\n";
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Creates the mount points where they are missing and removes only those.
class MountPoints {
 public:
  MountPoints() {
    for (const char* dir : {"/opt", "/var/opt"}) {
      if (!exists(dir) && mkdir(dir, 0755) == 0) myCreated.insert(myCreated.begin(), dir);
    }
  }
  ~MountPoints() {
    for (const std::string& dir : myCreated) rmdir(dir.c_str());
  }
  MountPoints(const MountPoints&) = delete;
  MountPoints& operator=(const MountPoints&) = delete;

 private:
  std::vector<std::string> myCreated;
};

class HostileEnvTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "installs set-user-id programs and mounts file systems";
    ProcessResult probe = sandboxed("/bin/true", false, {});
    if (probe.exitStatus != 0) GTEST_SKIP() << "no private mount namespace here: " << probe.err;

    for (const Launcher& launcher : LAUNCHERS) {
      const std::string copy = installed(launcher);
      makeDirs(copy.substr(0, copy.rfind('/')));
      writeFile(copy, readFile(launcher.path));
      ASSERT_EQ(chown(copy.c_str(), 0, 0), 0);
      ASSERT_EQ(chmod(copy.c_str(), 04755), 0);
    }
    // The attacker's own files: an agent and an install tree whose
    // authentication class is the attacker's.
    ASSERT_EQ(symlink((std::string(ZN_FIXTURE_JAR_DIR) + "/agent.jar").c_str(), agentJar().c_str()),
              0);
    ownByNobody(attacker.base());
  }

  std::string installed(const Launcher& launcher) const {
    return tree.base() + "/sbin/" + launcher.name;
  }
  std::string canary() const { return tree.base() + "/out/canary"; }
  std::string victim() const { return tree.base() + "/victim"; }
  std::string agentJar() const { return attacker.base() + "/agent.jar"; }
  std::string shadowJar() const { return attacker.base() + "/opt/zn/lib/shadow-auth.jar"; }

  static void ownByNobody(const std::string& path) {
    ASSERT_EQ(lchown(path.c_str(), NOBODY, NOBODY), 0) << path;
    struct stat info;
    if (lstat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return;
    for (const std::string& name : directoryOrder(path)) {
      if (name == "." || name == "..") continue;
      std::string child = path;
      child += '/';
      child += name;
      ownByNobody(child);
    }
  }

  // Runs `program` in the sandbox, as nobody or as root, with the test's
  // standard environment (no ZN_BASE_DIR) changed by `env`.
  ProcessResult sandboxed(const std::string& program, bool asNobody,
                          const std::map<std::string, std::string>& env,
                          const std::string& plant = "none", const std::string& plantArg = "") {
    ProcessOptions options;
    options.env = tree.baseEnv();
    options.env.erase("ZN_BASE_DIR");
    options.env["ZN_TEST_CANARY"] = canary();
    options.env["ZN_SHOW_JVM_OPTS"] = "";
    for (const auto& [key, value] : env) options.env[key] = value;
    const std::string user = asNobody ? std::to_string(NOBODY) : "-";
    options.args = {tree.base() + "/opt",
                    tree.base() + "/var/opt",
                    plant,
                    "znexec",
                    plantArg,
                    user,
                    user,
                    program};
    return runProcess(ZN_SANDBOX_EXEC, options);
  }

  ProcessResult launch(const Launcher& launcher, const std::string& command, bool asNobody,
                       const std::map<std::string, std::string>& env,
                       const std::string& plant = "none", const std::string& plantArg = "") {
    tree.setLauncher(installed(launcher));
    writeFile(tree.reportPath(), "");
    chmod(tree.reportPath().c_str(), 0666);
    unlink(canary().c_str());
    writeFile(victim(), PRECIOUS);
    chmod(victim().c_str(), 0644);
    return sandboxed(tree.commandPath(command), asNobody, env, plant, plantArg);
  }

  // After the drop, every thread of the command runs as nobody.
  void expectDroppedEverywhere(const Report& report) {
    EXPECT_EQ(first(report, "main.uid"), AS_NOBODY);
    EXPECT_EQ(first(report, "threads.uids"), AS_NOBODY) << "a thread kept another user id";
  }

  MountPoints mountPoints;
  LauncherTree tree;  // the install, seen at /opt/zn
  LauncherTree attacker{{"commands", "shadow-auth"}};
};

TEST_F(HostileEnvTest, SmuggledCodeRunsAsRootOnlyInTheDefaultLauncher) {
  struct Attack {
    const char* what;
    std::map<std::string, std::string> env;
    const char* canaryKey;
    const char* ignored;
  };
  const Attack attacks[] = {
      {"java agent",
       {{"ZN_JVM_OPTS", "-javaagent:" + agentJar()}},
       "agent.uid",
       msg::IGNORED_JVM_OPTS},
      {"authentication class first on CLASSPATH",
       {{"ZN_USE_ENV", ""}, {"CLASSPATH", shadowJar()}},
       "shadow.uid",
       msg::IGNORED_USE_ENV},
      {"install tree of the caller's",
       {{"ZN_BASE_DIR", attacker.base()}},
       "shadow.uid",
       msg::IGNORED_BASE_DIR},
  };
  for (const Attack& attack : attacks) {
    for (const Launcher& launcher : LAUNCHERS) {
      SCOPED_TRACE(std::string(attack.what) + " / " + launcher.name);
      ProcessResult result = launch(launcher, "znexec", true, attack.env);
      ASSERT_EQ(result.exitStatus, 0) << result.err;
      const Report report = tree.report();
      expectDroppedEverywhere(report);
      if (launcher.hardened) {
        EXPECT_FALSE(exists(canary())) << readFile(canary());
        EXPECT_TRUE(contains(result.err, ignoredLine(attack.ignored))) << result.err;
        EXPECT_EQ(first(report, "setKeys.uid"), KEYS_AS_ROOT) << "the install's own keys";
      } else {
        EXPECT_EQ(readFile(canary()), std::string(attack.canaryKey) + "=" + KEYS_AS_ROOT + "\n");
        EXPECT_EQ(result.err, "");
      }
    }
  }
}

TEST_F(HostileEnvTest, TraceOpensNothingExistingInTheHardenedLauncher) {
  const std::string cannotOpen = "Can't open debug trace file.";
  struct Case {
    const char* what;
    bool asNobody;
    const char* plant;  // at the trace file's name
  };
  const Case cases[] = {
      {"set-user-id, link to a root file", true, "link"},
      {"root, link to a root file", false, "link"},
      {"root, earlier file of the same name", false, "file"},
  };
  for (const Case& c : cases) {
    for (const Launcher& launcher : LAUNCHERS) {
      SCOPED_TRACE(std::string(c.what) + " / " + launcher.name);
      const bool link = std::string(c.plant) == "link";
      ProcessResult result = launch(launcher, "znexec", c.asNobody, {{"ZN_DTRACE", "0"}}, c.plant,
                                    link ? victim() : PRECIOUS);
      ASSERT_EQ(result.exitStatus, 0) << result.err;
      const std::string target =
          link ? victim()
               : tree.base() + "/var/opt/zn/logs/znexec.dbg." + first(tree.report(), "pid");
      const std::string after = readFile(target);
      if (launcher.hardened) {
        EXPECT_TRUE(after == PRECIOUS) << "truncated or written: " << after.substr(0, 80);
        EXPECT_TRUE(
            contains(result.err, c.asNobody ? ignoredLine(msg::IGNORED_DTRACE) : cannotOpen))
            << result.err;
      } else {
        EXPECT_FALSE(contains(after, PRECIOUS)) << "not truncated";
        EXPECT_TRUE(contains(after, "Debug started: ")) << "the trace went elsewhere";
      }
    }
  }
}

TEST_F(HostileEnvTest, WithoutAttacksBothLaunchersBehaveAsDocumented) {
  struct Case {
    const char* command;
    std::string keysUid;  // empty: no key hand-over
    std::string mainUid;
  };
  const Case cases[] = {
      {"znexec", KEYS_AS_ROOT, AS_NOBODY},
      {"orvex", "", AS_NOBODY},
      {"zninit", "", KEYS_AS_ROOT},  // keeps the privileges it was started with
  };
  const std::string refuseAttach = "addJVMOption(): -XX:+DisableAttachMechanism\n";
  for (const Case& c : cases) {
    for (const Launcher& launcher : LAUNCHERS) {
      SCOPED_TRACE(std::string(c.command) + " / " + launcher.name);
      ProcessResult result = launch(launcher, c.command, true, {});
      ASSERT_EQ(result.exitStatus, 0) << result.err;
      EXPECT_EQ(result.err, "");
      const Report report = tree.report();
      EXPECT_EQ(report.count("setKeys.uid"), c.keysUid.empty() ? 0u : 1u);
      if (!c.keysUid.empty()) {
        EXPECT_EQ(first(report, "setKeys.uid"), c.keysUid);
      }
      EXPECT_EQ(first(report, "main.uid"), c.mainUid);
      if (c.mainUid == AS_NOBODY) {
        expectDroppedEverywhere(report);
      }
      EXPECT_EQ(contains(result.out, refuseAttach), launcher.hardened);
    }
  }
  // Run by root itself, the hardened launcher has no one to refuse.
  ProcessResult asRoot = launch(LAUNCHERS[1], "znexec", false, {});
  ASSERT_EQ(asRoot.exitStatus, 0) << asRoot.err;
  EXPECT_FALSE(contains(asRoot.out, refuseAttach));
  EXPECT_EQ(first(tree.report(), "main.uid"), "0 0 0 0");
}

TEST(HardenedPrivilegeDrop, FailedDropEndsTheCommand) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to make a user namespace here";
  LauncherTree tree;
  tree.setLauncher(ZN_HARDENED_LAUNCHER_PATH);
  ProcessOptions options;
  // In a user namespace without a mapping the real ids are unmapped, and
  // setting any id to them fails; the group ids come first.
  options.ownUserNamespace = true;
  ProcessResult result = tree.run("zngethostname", {}, {}, options);
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.err,
            std::string(msg::ERROR_PREFIX) + "zngethostname" + msg::CANNOT_SET_GID + "\n");
  EXPECT_EQ(tree.report().count("class"), 0u);
}

}  // namespace
}  // namespace zntest
