// SetuidGuard: the hardened launcher for a set-user-id install.
//
// Compiled into the launcher only when ZN_HARDENED_SETUID is defined; the
// default launcher never calls it. In a process that an ordinary user
// started with another effective user (runsForAnotherUser), the hardened
// launcher
//   - removes ZN_JVM_OPTS, ZN_USE_ENV, ZN_BASE_DIR and ZN_DTRACE from the
//     environment at the start of setup, before anything reads them, with
//     one line on standard error for each one that was set;
//   - adds DISABLE_ATTACH_OPTION, so the caller cannot attach to the virtual
//     machine that held the keys.
// In every process it gives raised ids up completely and checks it
// (dropPrivileges), and opens the trace file without following a link and
// without truncating an existing file (startTraceStream).
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdio>
#include <string>

namespace setuidguard {

constexpr char DISABLE_ATTACH_OPTION[] = "-XX:+DisableAttachMechanism";

// Whether this process's real user is not root and its effective user
// differs from it; decided on the first call and kept.
bool runsForAnotherUser();

// In a process that runsForAnotherUser(): removeCallerControlled with
// standard error.
void screenEnvironment(const std::string& command);
// Removes the variables a set-user-id run must not trust, writing one line
// to `err` for each one that was set.
void removeCallerControlled(const std::string& command, std::FILE* err);

// The id calls of the privilege drop; tests replace them.
struct IdCalls {
  int (*setgroups)(std::size_t count, const gid_t* groups);
  int (*setresgid)(gid_t real, gid_t effective, gid_t saved);
  int (*setresuid)(uid_t real, uid_t effective, uid_t saved);
  int (*getresgid)(gid_t* real, gid_t* effective, gid_t* saved);
  int (*getresuid)(uid_t* real, uid_t* effective, uid_t* saved);
  uid_t (*geteuid)();
};
const IdCalls& systemIdCalls();

// Sets every user and group id to the real ones: the supplementary groups
// to the real group alone (only root can change them), then the group ids,
// then the user ids; confirms that root can no longer be regained and that
// no other id is left. A real user that is root keeps everything
// (setuid(0), as the default launcher does). Returns null on success,
// otherwise the message text that follows the command name.
const char* dropPrivileges(uid_t realUid, gid_t realGid, const IdCalls& calls = systemIdCalls());

// Opens `fileName` for writing: created with mode 0600, never through a
// symbolic link, never an existing file. Null (errno set) when it cannot.
std::FILE* openTraceFile(const char* fileName);

// Opens the trace stream with openTraceFile unless one is open already.
// When it cannot, writes the trace facility's two lines to standard error
// and returns false: the trace stays off.
bool startTraceStream(const char* fileName);

}  // namespace setuidguard
