// Helpers for the locale tests: environment variables set for a scope, captured output and
// whole-file reads.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

// Sets (or with null, removes) an environment variable and restores it at scope end.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : myName(name) {
    if (const char* old = std::getenv(name)) myOld = old;
    set(value);
  }
  ~ScopedEnv() { set(myOld ? myOld->c_str() : nullptr); }
  void set(const char* value) { value ? setenv(myName, value, 1) : unsetenv(myName); }

 private:
  const char* myName;
  std::optional<std::string> myOld;
};

inline std::string readWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

struct Captured {
  std::string out, err;
};

// Runs `action` with standard output and standard error sent to temporary files.
inline Captured capture(const std::function<void()>& action) {
  std::fflush(stdout);
  std::fflush(stderr);
  std::FILE* files[2] = {std::tmpfile(), std::tmpfile()};
  int saved[2] = {dup(1), dup(2)};
  dup2(fileno(files[0]), 1);
  dup2(fileno(files[1]), 2);
  action();
  std::fflush(stdout);
  std::fflush(stderr);
  std::string text[2];
  for (int i = 0; i < 2; ++i) {
    dup2(saved[i], i + 1);
    close(saved[i]);
    std::rewind(files[i]);
    for (int c; (c = std::fgetc(files[i])) != EOF;) text[i] += static_cast<char>(c);
    std::fclose(files[i]);
  }
  return {text[0], text[1]};
}
