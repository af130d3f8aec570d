// Runs a program in a private mount namespace that puts a test's install
// tree at the standard places, optionally plants something at the name the
// program's trace file will get, and optionally becomes another user first.
//
//   sandbox_exec OPT_DIR VAR_OPT_DIR PLANT COMMAND ARG UID GID PROGRAM [ARGS...]
//
// OPT_DIR and VAR_OPT_DIR are bind-mounted on /opt and /var/opt, visible to
// this process and the program only. PLANT is "none", "link" (a symbolic
// link to ARG) or "file" (a regular file holding ARG) at
// /var/opt/zn/logs/COMMAND.dbg.<pid>; the program keeps this process's id,
// so that is its trace file's name. UID and GID "-" keep root. Must be
// started by root; exits 125 when the sandbox cannot be made.
#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int SANDBOX_FAILED = 125;

[[noreturn]] void fail(const char* what) {
  fprintf(stderr, "sandbox_exec: %s: %s\n", what, strerror(errno));
  exit(SANDBOX_FAILED);
}

void bindMount(const char* from, const char* to) {
  if (mount(from, to, nullptr, MS_BIND | MS_REC, nullptr) != 0) fail(to);
}

void plant(const std::string& kind, const std::string& command, const std::string& arg) {
  if (kind == "none") return;
  const std::string name =
      "/var/opt/zn/logs/" + command + ".dbg." + std::to_string(static_cast<long>(getpid()));
  if (kind == "link") {
    if (symlink(arg.c_str(), name.c_str()) != 0) fail("symlink");
    return;
  }
  int fd = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
  if (fd < 0 || write(fd, arg.data(), arg.size()) != static_cast<ssize_t>(arg.size())) {
    fail("plant file");
  }
  close(fd);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 9) {
    fprintf(stderr, "usage: %s OPT VAR_OPT PLANT COMMAND ARG UID GID PROGRAM [ARGS...]\n", argv[0]);
    return 2;
  }
  if (unshare(CLONE_NEWNS) != 0) fail("unshare");
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) fail("private /");
  bindMount(argv[1], "/opt");
  bindMount(argv[2], "/var/opt");
  plant(argv[3], argv[4], argv[5]);
  if (std::string(argv[6]) != "-") {
    const auto uid = static_cast<uid_t>(std::strtoul(argv[6], nullptr, 10));
    const auto gid = static_cast<gid_t>(std::strtoul(argv[7], nullptr, 10));
    if (setgroups(0, nullptr) != 0 || setresgid(gid, gid, gid) != 0 ||
        setresuid(uid, uid, uid) != 0) {
      fail("become user");
    }
  }
  execv(argv[8], argv + 8);
  fail("execv");
}
