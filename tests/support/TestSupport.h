// Real processes, directories and a system-log listener for the tests.
#pragma once

#include <sys/types.h>

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zntest {

struct ProcessResult {
  int exitStatus = -1;  // -1 when the process did not exit normally
  int signal = 0;
  bool timedOut = false;
  std::string out;
  std::string err;
};

struct ProcessOptions {
  std::optional<std::string> argv0;        // defaults to the program path
  std::vector<std::string> args;           // after argv0
  std::map<std::string, std::string> env;  // the whole environment
  std::optional<uid_t> uid;                // run as this user (root only)
  std::optional<gid_t> gid;
  mode_t umask = 022;
  bool ownUserNamespace = false;  // unmapped user namespace: setuid() must fail
  int timeoutSeconds = 120;
};

// Runs `program` to its end and collects its output.
ProcessResult runProcess(const std::string& program, const ProcessOptions& options);

// Sets `name` to `value`; a null value removes it.
inline void setEnv(const char* name, const char* value) {
  if (value) {
    setenv(name, value, 1);
  } else {
    unsetenv(name);
  }
}

// Sets environment variables for one scope and puts the old values back.
class ScopedEnv {
 public:
  using Values = std::map<std::string, std::optional<std::string>>;
  // A value of nullopt removes the variable.
  ScopedEnv(std::initializer_list<Values::value_type> values) : ScopedEnv(Values(values)) {}
  // One variable; a null value removes it.
  ScopedEnv(const char* name, const char* value)
      : ScopedEnv(Values{{name, value ? std::optional<std::string>(value) : std::nullopt}}) {}
  explicit ScopedEnv(const Values& values) {
    for (const auto& [name, value] : values) {
      const char* old = getenv(name.c_str());
      mySaved[name] = old ? std::optional<std::string>(old) : std::nullopt;
      set(name, value);
    }
  }
  ~ScopedEnv() {
    for (const auto& [name, value] : mySaved) set(name, value);
  }

 private:
  static void set(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
  std::map<std::string, std::optional<std::string>> mySaved;
};

// Standard output and standard error of `action`, run in this process.
struct CapturedOutput {
  std::string out, err;
};
CapturedOutput captureOutput(const std::function<void()>& action);

// A temporary directory, removed with everything below it.
class TempDir {
 public:
  explicit TempDir(const std::string& prefix = "zntest");
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return myPath; }

 private:
  std::string myPath;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
bool exists(const std::string& path);
void makeDirs(const std::string& path, mode_t mode = 0755);
void removeTree(const std::string& path);
std::vector<std::string> splitLines(const std::string& text);
// Lower-case hexadecimal of each byte.
std::string hexOf(const std::string& bytes);
// Names in a directory in the order the directory stream delivers them.
std::vector<std::string> directoryOrder(const std::string& dir);

// Listens on the system-log socket /dev/log. Only root can do that; where a
// log daemon owns the socket already, tests that need the listener skip.
class SyslogListener {
 public:
  SyslogListener();
  ~SyslogListener();
  SyslogListener(const SyslogListener&) = delete;
  SyslogListener& operator=(const SyslogListener&) = delete;
  bool ready() const { return mySocket >= 0; }
  const std::string& whyNotReady() const { return myProblem; }
  // Datagrams that arrive within `waitMillis`.
  std::vector<std::string> drain(int waitMillis = 300);

 private:
  int mySocket = -1;
  std::string myProblem;
};

// The message of a syslog datagram: the text after "<pri>date ident: ".
struct SyslogEntry {
  int priority = -1;
  std::string message;
};
SyslogEntry parseSyslog(const std::string& datagram);

}  // namespace zntest
