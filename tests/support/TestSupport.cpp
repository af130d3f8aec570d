#include "TestSupport.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zntest {

namespace {

[[noreturn]] void childFail(const char* what) {
  dprintf(2, "test harness: %s: %s\n", what, strerror(errno));
  _exit(127);
}

void appendAvailable(int fd, std::string& to, bool& open) {
  char buffer[65536];
  ssize_t n = read(fd, buffer, sizeof buffer);
  if (n > 0) {
    to.append(buffer, static_cast<size_t>(n));
  } else if (n == 0 || errno != EINTR) {
    open = false;
  }
}

constexpr char LOG_SOCKET[] = "/dev/log";

}  // namespace

ProcessResult runProcess(const std::string& program, const ProcessOptions& options) {
  std::vector<std::string> argStrings;
  argStrings.push_back(options.argv0.value_or(program));
  argStrings.insert(argStrings.end(), options.args.begin(), options.args.end());
  std::vector<std::string> envStrings;
  for (const auto& [key, value] : options.env) envStrings.push_back(key + "=" + value);
  std::vector<char*> argv, envp;
  for (auto& s : argStrings) argv.push_back(s.data());
  for (auto& s : envStrings) envp.push_back(s.data());
  argv.push_back(nullptr);
  envp.push_back(nullptr);

  int outPipe[2], errPipe[2];
  if (pipe2(outPipe, O_CLOEXEC) != 0 || pipe2(errPipe, O_CLOEXEC) != 0) {
    throw std::runtime_error("pipe failed");
  }
  pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    dup2(outPipe[1], 1);
    dup2(errPipe[1], 2);
    int devNull = open("/dev/null", O_RDONLY);
    if (devNull >= 0) dup2(devNull, 0);
    umask(options.umask);
    if (options.ownUserNamespace && unshare(CLONE_NEWUSER) != 0) childFail("unshare");
    if (options.gid &&
        (setgroups(0, nullptr) != 0 || setresgid(*options.gid, *options.gid, *options.gid) != 0)) {
      childFail("setgid");
    }
    if (options.uid && setresuid(*options.uid, *options.uid, *options.uid) != 0) {
      childFail("setuid");
    }
    execve(program.c_str(), argv.data(), envp.data());
    childFail("execve");
  }
  close(outPipe[1]);
  close(errPipe[1]);

  ProcessResult result;
  bool outOpen = true, errOpen = true;
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::seconds(options.timeoutSeconds);
  while (outOpen || errOpen) {
    pollfd fds[2] = {{outOpen ? outPipe[0] : -1, POLLIN, 0},
                     {errOpen ? errPipe[0] : -1, POLLIN, 0}};
    int ready = poll(fds, 2, 200);
    if (ready > 0) {
      if (fds[0].revents != 0) appendAvailable(outPipe[0], result.out, outOpen);
      if (fds[1].revents != 0) appendAvailable(errPipe[0], result.err, errOpen);
    }
    if (std::chrono::steady_clock::now() > deadline) {
      result.timedOut = true;
      kill(pid, SIGKILL);
      break;
    }
  }
  close(outPipe[0]);
  close(errPipe[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

CapturedOutput captureOutput(const std::function<void()>& action) {
  fflush(stdout);
  fflush(stderr);
  FILE* files[2] = {tmpfile(), tmpfile()};
  int saved[2] = {dup(1), dup(2)};
  dup2(fileno(files[0]), 1);
  dup2(fileno(files[1]), 2);
  action();
  fflush(stdout);
  fflush(stderr);
  std::string text[2];
  for (int i = 0; i < 2; ++i) {
    dup2(saved[i], i + 1);
    close(saved[i]);
    rewind(files[i]);
    for (int c; (c = fgetc(files[i])) != EOF;) text[i] += static_cast<char>(c);
    fclose(files[i]);
  }
  return {text[0], text[1]};
}

TempDir::TempDir(const std::string& prefix) {
  std::string pattern = "/tmp/" + prefix + ".XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  myPath = pattern;
  chmod(myPath.c_str(), 0755);
}

TempDir::~TempDir() {
  removeTree(myPath);
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

bool exists(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) == 0;
}

void makeDirs(const std::string& path, mode_t mode) {
  for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    std::string prefix = path.substr(0, slash);
    if (mkdir(prefix.c_str(), mode) == 0) chmod(prefix.c_str(), mode);
    if (slash == std::string::npos) break;
  }
}

void removeTree(const std::string& path) {
  struct stat info;
  if (lstat(path.c_str(), &info) != 0) return;
  if (S_ISDIR(info.st_mode)) {
    if (DIR* dir = opendir(path.c_str())) {
      while (dirent* entry = readdir(dir)) {
        std::string name = entry->d_name;
        if (name != "." && name != "..") removeTree(path + "/" + name);
      }
      closedir(dir);
    }
    rmdir(path.c_str());
  } else {
    unlink(path.c_str());
  }
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string hexOf(const std::string& bytes) {
  std::string text;
  char digits[3];
  for (unsigned char c : bytes) {
    snprintf(digits, sizeof digits, "%02x", c);
    text += digits;
  }
  return text;
}

std::vector<std::string> directoryOrder(const std::string& dir) {
  std::vector<std::string> names;
  if (DIR* stream = opendir(dir.c_str())) {
    while (dirent* entry = readdir(stream)) names.push_back(entry->d_name);
    closedir(stream);
  }
  return names;
}

SyslogListener::SyslogListener() {
  if (geteuid() != 0) {
    myProblem = "listening on " + std::string(LOG_SOCKET) + " needs root";
    return;
  }
  if (exists(LOG_SOCKET)) {
    myProblem = std::string(LOG_SOCKET) + " belongs to a running log daemon";
    return;
  }
  int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, LOG_SOCKET, sizeof address.sun_path - 1);
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    myProblem = std::string("cannot bind ") + LOG_SOCKET + ": " + strerror(errno);
    if (fd >= 0) close(fd);
    return;
  }
  chmod(LOG_SOCKET, 0666);
  mySocket = fd;
}

SyslogListener::~SyslogListener() {
  if (mySocket >= 0) {
    close(mySocket);
    unlink(LOG_SOCKET);
  }
}

std::vector<std::string> SyslogListener::drain(int waitMillis) {
  std::vector<std::string> datagrams;
  if (mySocket < 0) return datagrams;
  pollfd fd = {mySocket, POLLIN, 0};
  while (poll(&fd, 1, waitMillis) > 0) {
    char buffer[8192];
    ssize_t n = recv(mySocket, buffer, sizeof buffer, 0);
    if (n <= 0) break;
    datagrams.emplace_back(buffer, static_cast<size_t>(n));
  }
  return datagrams;
}

SyslogEntry parseSyslog(const std::string& datagram) {
  SyslogEntry entry;
  if (datagram.size() < 3 || datagram[0] != '<') return entry;
  size_t close = datagram.find('>');
  entry.priority = std::atoi(datagram.substr(1, close - 1).c_str());
  // "<pri>Mmm dd hh:mm:ss ident: message": the timestamp is 15 characters.
  size_t identEnd = datagram.find(": ", close + 1 + 15);
  if (identEnd != std::string::npos) entry.message = datagram.substr(identEnd + 2);
  return entry;
}

}  // namespace zntest
