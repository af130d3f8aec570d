#include "SetuidGuard.h"

#include <fcntl.h>
#include <grp.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "LauncherEnvironment.h"
#include "Messages.h"
#include "ZnDebug.h"
#include "ZnDebugInit.h"

namespace setuidguard {

namespace {

constexpr uid_t KEEP_UID = static_cast<uid_t>(-1);
constexpr gid_t KEEP_GID = static_cast<gid_t>(-1);
constexpr uid_t ROOT = 0;

struct CallerControlled {
  const char* variable;
  const char* whyIgnored;
};

// Everything a caller could use to choose the code or the files that the
// virtual machine loads or writes while it still holds the raised ids.
constexpr CallerControlled CALLER_CONTROLLED[] = {
    {JVM_OPTS_ENV_VAR, msg::IGNORED_JVM_OPTS},
    {USE_ENV, msg::IGNORED_USE_ENV},
    {BASE_DIR_ENV_VAR, msg::IGNORED_BASE_DIR},
    {TRACE_ENV_VAR, msg::IGNORED_DTRACE},
};

int systemSetgroups(std::size_t count, const gid_t* groups) {
  return ::setgroups(count, groups);
}

}  // namespace

bool runsForAnotherUser() {
  static const bool decided = getuid() != ROOT && getuid() != geteuid();
  return decided;
}

void screenEnvironment(const std::string& command) {
  if (runsForAnotherUser()) removeCallerControlled(command, stderr);
}

void removeCallerControlled(const std::string& command, std::FILE* err) {
  for (const CallerControlled& entry : CALLER_CONTROLLED) {
    if (getenv(entry.variable) == nullptr) continue;
    unsetenv(entry.variable);  // every copy of it, so nothing later sees one
    fprintf(err, "%s%s%s%s\n", msg::IGNORED_PREFIX, command.c_str(), msg::IGNORED_IN_SETUID_RUN,
            entry.whyIgnored);
  }
  fflush(err);
}

const IdCalls& systemIdCalls() {
  static const IdCalls calls = {systemSetgroups, ::setresgid, ::setresuid,
                                ::getresgid,     ::getresuid, ::geteuid};
  return calls;
}

const char* dropPrivileges(uid_t realUid, gid_t realGid, const IdCalls& calls) {
  if (realUid == ROOT) {
    // Started by root: nothing to give up.
    return calls.setresuid(ROOT, ROOT, ROOT) == 0 ? nullptr : msg::CANNOT_SET_UID;
  }
  // Only root can change the supplementary groups; any other effective user
  // still has the caller's own.
  if (calls.geteuid() == ROOT && calls.setgroups(1, &realGid) != 0) return msg::CANNOT_SET_GROUPS;
  if (calls.setresgid(realGid, realGid, realGid) != 0) return msg::CANNOT_SET_GID;
  if (calls.setresuid(realUid, realUid, realUid) != 0) return msg::CANNOT_SET_UID;

  if (calls.setresuid(KEEP_UID, ROOT, KEEP_UID) == 0) return msg::ROOT_REGAINABLE;
  if (realGid != 0 && calls.setresgid(KEEP_GID, 0, KEEP_GID) == 0) return msg::ROOT_REGAINABLE;

  uid_t uids[3] = {ROOT, ROOT, ROOT};
  gid_t gids[3] = {0, 0, 0};
  if (calls.getresuid(&uids[0], &uids[1], &uids[2]) != 0 ||
      calls.getresgid(&gids[0], &gids[1], &gids[2]) != 0) {
    return msg::IDS_LEFT;
  }
  for (int i = 0; i < 3; ++i) {
    if (uids[i] != realUid || gids[i] != realGid) return msg::IDS_LEFT;
  }
  return nullptr;
}

std::FILE* openTraceFile(const char* fileName) {
  int fd = open(fileName, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd < 0) return nullptr;
  std::FILE* stream = fdopen(fd, "w");
  if (stream == nullptr) {
    int error = errno;
    close(fd);
    errno = error;
  }
  return stream;
}

bool startTraceStream(const char* fileName) {
  if (stddbg != nullptr) return true;
  stddbg = openTraceFile(fileName);
  if (stddbg != nullptr) return true;
  int error = errno;
  fprintf(stderr, "Can't open debug trace file. '%s'\n", fileName);
  fprintf(stderr, "Error #%d - %s\n", error, strerror(error));
  return false;
}

}  // namespace setuidguard
