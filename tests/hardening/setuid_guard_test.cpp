// The hardened set-user-id guard, on its own.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "Messages.h"
#include "SetuidGuard.h"
#include "TestSupport.h"

namespace zntest {
namespace {

using setuidguard::IdCalls;

// Id calls that record themselves. Giving up ids succeeds and regaining
// root fails, unless the case says otherwise; getresuid/getresgid report the
// real ids, or root at position `rootAt` (0-2 user ids, 3-5 group ids).
struct FakeIds {
  static inline std::string calls;
  static inline std::string failing;    // this call fails
  static inline std::string regaining;  // this call regains root
  static inline uid_t effective = 0;
  static inline int rootAt = -1;

  static long id(uid_t value) { return value == static_cast<uid_t>(-1) ? -1L : long{value}; }
  static int record(const std::string& call, bool regainsRoot = false) {
    calls += (calls.empty() ? "" : " ") + call;
    return call == failing || (regainsRoot && call != regaining) ? -1 : 0;
  }
  static std::string ids(const char* name, long r, long e, long s) {
    return name + ("(" + std::to_string(r) + "," + std::to_string(e) + "," + std::to_string(s)) +
           ")";
  }
  static int setgroups(std::size_t count, const gid_t* groups) {
    return record(count == 1 ? "setgroups(" + std::to_string(groups[0]) + ")" : "setgroups(?)");
  }
  static int setresgid(gid_t r, gid_t e, gid_t s) {
    return record(ids("setresgid", id(r), id(e), id(s)), e == 0);
  }
  static int setresuid(uid_t r, uid_t e, uid_t s) {
    return record(ids("setresuid", id(r), id(e), id(s)), e == 0 && r != 0);
  }
  template <typename Id>
  static int report(const char* name, Id real, int offset, Id* r, Id* e, Id* s) {
    Id* out[3] = {r, e, s};
    for (int i = 0; i < 3; ++i) *out[i] = rootAt == offset + i ? 0 : real;
    return record(name);
  }
  static int getresuid(uid_t* r, uid_t* e, uid_t* s) {
    return report("getresuid", 1000u, 0, r, e, s);
  }
  static int getresgid(gid_t* r, gid_t* e, gid_t* s) {
    return report("getresgid", 100u, 3, r, e, s);
  }
  static uid_t geteuid() { return effective; }
};

const IdCalls FAKE_CALLS = {FakeIds::setgroups, FakeIds::setresgid, FakeIds::setresuid,
                            FakeIds::getresgid, FakeIds::getresuid, FakeIds::geteuid};

TEST(SetuidGuard, DropGivesEveryIdUpAndChecksEachStep) {
  const std::string groups = "setgroups(100) ";
  const std::string drop = "setresgid(100,100,100) setresuid(1000,1000,1000)";
  const std::string regain = " setresuid(-1,0,-1) setresgid(-1,0,-1)";
  const std::string check = " getresuid getresgid";
  struct Case {
    const char* what;
    uid_t realUid, effective;
    const char* failing;
    const char* regaining;
    int rootAt;
    const char* expected;  // message, or null
    std::string calls;
  };
  // clang-format off
  const Case cases[] = {
      {"set-user-id root", 1000, 0, "", "", -1, nullptr, groups + drop + regain + check},
      {"set-user-id to another user: the caller's own groups stay", 1000, 2000, "", "", -1,
       nullptr, drop + regain + check},
      {"groups", 1000, 0, "setgroups(100)", "", -1, msg::CANNOT_SET_GROUPS, "setgroups(100)"},
      {"gid", 1000, 0, "setresgid(100,100,100)", "", -1, msg::CANNOT_SET_GID,
       groups + "setresgid(100,100,100)"},
      {"uid", 1000, 0, "setresuid(1000,1000,1000)", "", -1, msg::CANNOT_SET_UID, groups + drop},
      {"root user regained", 1000, 0, "", "setresuid(-1,0,-1)", -1, msg::ROOT_REGAINABLE,
       groups + drop + " setresuid(-1,0,-1)"},
      {"root group regained", 1000, 0, "", "setresgid(-1,0,-1)", -1, msg::ROOT_REGAINABLE,
       groups + drop + regain},
      {"saved uid left", 1000, 0, "", "", 2, msg::IDS_LEFT, groups + drop + regain + check},
      {"effective gid left", 1000, 0, "", "", 4, msg::IDS_LEFT, groups + drop + regain + check},
      {"ids unreadable", 1000, 0, "getresuid", "", -1, msg::IDS_LEFT,
       groups + drop + regain + " getresuid"},
      {"started by root", 0, 0, "", "", -1, nullptr, "setresuid(0,0,0)"},
      {"started by root, failing", 0, 0, "setresuid(0,0,0)", "", -1, msg::CANNOT_SET_UID,
       "setresuid(0,0,0)"},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    FakeIds::calls.clear();
    FakeIds::failing = c.failing;
    FakeIds::regaining = c.regaining;
    FakeIds::effective = c.effective;
    FakeIds::rootAt = c.rootAt;
    EXPECT_STREQ(setuidguard::dropPrivileges(c.realUid, 100, FAKE_CALLS), c.expected);
    EXPECT_EQ(FakeIds::calls, c.calls);
  }
}

// The real calls, in a child that is what a set-user-id root program run by
// nobody is: real ids nobody, effective and saved user root.
TEST(SetuidGuard, DropLeavesNoWayBackToRoot) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to take on a set-user-id identity";
  constexpr uid_t NOBODY = 65534;
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const gid_t extra = 0;
    if (setgroups(1, &extra) != 0 || setresgid(NOBODY, NOBODY, NOBODY) != 0 ||
        setresuid(NOBODY, 0, 0) != 0) {
      _exit(10);
    }
    if (setuidguard::dropPrivileges(NOBODY, NOBODY) != nullptr) _exit(11);
    uid_t r, e, s;
    gid_t groups[4];
    if (getresuid(&r, &e, &s) != 0 || r != NOBODY || e != NOBODY || s != NOBODY) _exit(12);
    if (getgroups(4, groups) != 1 || groups[0] != NOBODY) _exit(13);
    if (setuid(0) == 0 || seteuid(0) == 0) _exit(14);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

// Sets and restores the variables of one test.
class ScopedEnvironment {
 public:
  explicit ScopedEnvironment(const std::vector<std::pair<std::string, const char*>>& values) {
    for (const auto& [name, value] : values) {
      const char* old = getenv(name.c_str());
      mySaved.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
      if (value) {
        setenv(name.c_str(), value, 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  ~ScopedEnvironment() {
    for (const auto& [name, value] : mySaved) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> mySaved;
};

TEST(SetuidGuard, CallerControlledVariablesAreRemovedWithOneLineEach) {
  ScopedEnvironment env({{"ZN_JVM_OPTS", "-javaagent:/tmp/a.jar"},
                         {"ZN_USE_ENV", nullptr},
                         {"ZN_BASE_DIR", ""},
                         {"ZN_DTRACE", "0,31"},
                         {"CLASSPATH", "/tmp/x.jar"},
                         {"ZN_SHOW_JVM_OPTS", ""}});
  char* text = nullptr;
  size_t size = 0;
  std::FILE* err = open_memstream(&text, &size);
  ASSERT_NE(err, nullptr);
  setuidguard::removeCallerControlled("znexec", err);
  std::fclose(err);
  const std::string lines = text;
  std::free(text);

  const std::string prefix = "WARNING: znexec is running set-user-id: ";
  EXPECT_EQ(lines, prefix + msg::IGNORED_JVM_OPTS + "\n" + prefix + msg::IGNORED_BASE_DIR + "\n" +
                       prefix + msg::IGNORED_DTRACE + "\n");
  for (const char* gone : {"ZN_JVM_OPTS", "ZN_USE_ENV", "ZN_BASE_DIR", "ZN_DTRACE"}) {
    EXPECT_EQ(getenv(gone), nullptr) << gone;
  }
  // Consulted only with ZN_USE_ENV, and not the guard's to remove.
  EXPECT_STREQ(getenv("CLASSPATH"), "/tmp/x.jar");
  EXPECT_STREQ(getenv("ZN_SHOW_JVM_OPTS"), "");
}

TEST(SetuidGuard, TraceFileIsOnlyEverANewFile) {
  TempDir dir("zntrace");
  const std::string victim = dir.path() + "/victim";
  writeFile(victim, "precious\n");
  const std::string existing = dir.path() + "/existing";
  writeFile(existing, "earlier trace\n");
  ASSERT_EQ(symlink(victim.c_str(), (dir.path() + "/link").c_str()), 0);
  ASSERT_EQ(symlink((dir.path() + "/absent").c_str(), (dir.path() + "/dangling").c_str()), 0);

  struct Case {
    const char* name;
    int expectedErrno;  // 0: opened
  };
  const Case cases[] = {
      {"new", 0},           {"existing", EEXIST},        {"link", EEXIST},
      {"dangling", EEXIST}, {"missing-dir/new", ENOENT},
  };
  const mode_t oldMask = umask(0);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = dir.path() + "/" + c.name;
    errno = 0;
    std::FILE* file = setuidguard::openTraceFile(path.c_str());
    if (c.expectedErrno != 0) {
      EXPECT_EQ(file, nullptr);
      EXPECT_EQ(errno, c.expectedErrno);
      continue;
    }
    ASSERT_NE(file, nullptr);
    std::fputs("line\n", file);
    std::fclose(file);
    struct stat info;
    ASSERT_EQ(lstat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
    EXPECT_EQ(readFile(path), "line\n");
  }
  umask(oldMask);
  EXPECT_EQ(readFile(victim), "precious\n");
  EXPECT_EQ(readFile(existing), "earlier trace\n");
  EXPECT_FALSE(exists(dir.path() + "/absent"));
}

}  // namespace
}  // namespace zntest
