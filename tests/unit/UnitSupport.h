// Helpers for tests of the launcher's own operations.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "ZnCMD.h"
#include "ZnDebug.h"

namespace zntest {

constexpr char CMD_UNIT[] = "src/cxx/shared/ZnCLI/ZnCMD.cpp";

// Sends the trace to a temporary file at the given levels for one scope.
class TraceCapture {
 public:
  explicit TraceCapture(int32_t level) : myFile(tmpfile()) {
    stddbg = myFile;
    _Debug = level;
    debug_reset_indent();
  }
  ~TraceCapture() {
    _Debug = 0;
    stddbg = nullptr;
    debug_reset_indent();
    fclose(myFile);
  }
  std::vector<std::string> lines() const {
    fflush(myFile);
    std::string text;
    rewind(myFile);
    for (int c = fgetc(myFile); c != EOF; c = fgetc(myFile)) text += static_cast<char>(c);
    return splitLines(text);
  }

 private:
  FILE* myFile;
};

constexpr int32_t ALL_LEVELS = static_cast<int32_t>(0x80000001u);  // levels 0 and 31

// A command object of class `Base` whose state the tests can see.
template <class Base = ZnCMD>
class Probe : public Base {
 public:
  explicit Probe(const std::string& name = "znexec", const std::string& cls = "a/B")
      : Base(name, cls) {}
  using Base::myArgc;
  using Base::myArgv;
  using Base::myBasePath;
  using Base::myEnv;
  using Base::myOptionCount;
  using Base::myOptions;
  using Base::myShowJvmOpts;
  using Base::origUID;
  std::vector<std::string> options() const {
    std::vector<std::string> texts;
    for (int i = 0; i < myOptionCount; ++i) texts.push_back(myOptions[i].optionString);
    return texts;
  }
};
using ProbeCMD = Probe<>;

// `text` as an extended regular expression that matches exactly it.
inline std::string exactly(const std::string& text) {
  std::string pattern = "^";
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) pattern += '\\';
    pattern += c;
  }
  return pattern + "$";
}

}  // namespace zntest
