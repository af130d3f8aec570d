// The debug trace file of a real launch.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <regex>

#include "LauncherTree.h"

namespace zntest {
namespace {

constexpr char LOG_DIR[] = "/var/opt/zn/logs/";
constexpr char CMD_UNIT[] = "src/cxx/shared/ZnCLI/ZnCMD.cpp";

// Creates the trace directory where it is missing and removes only what it
// created.
class TraceDirectory {
 public:
  TraceDirectory() {
    for (const char* dir : {"/var/opt", "/var/opt/zn", "/var/opt/zn/logs"}) {
      if (!exists(dir) && mkdir(dir, 0755) == 0) myCreated.insert(myCreated.begin(), dir);
    }
  }
  ~TraceDirectory() {
    for (const std::string& dir : myCreated) rmdir(dir.c_str());
  }

 private:
  std::vector<std::string> myCreated;
};

struct TraceLine {
  enum Kind { Entering, Leaving, Message, Other } kind = Other;
  std::string unit, name, text;
  size_t blanks = 0;  // between the label's colon and the text
};

TraceLine parse(const std::string& line) {
  static const std::regex entering(R"(^(\S+) *:( *)Entering (.+)\(\)$)");
  static const std::regex leaving(R"(^(\S+) *:( *)Leaving  (.+)\(\) at \d+$)");
  static const std::regex message(R"(^(\S+) *:( +)(.*)$)");
  std::smatch m;
  TraceLine t;
  if (std::regex_match(line, m, entering)) {
    t = {TraceLine::Entering, m[1], m[3], "", static_cast<size_t>(m[2].length())};
  } else if (std::regex_match(line, m, leaving)) {
    t = {TraceLine::Leaving, m[1], m[3], "", static_cast<size_t>(m[2].length())};
  } else if (std::regex_match(line, m, message)) {
    t = {TraceLine::Message, m[1], "", m[3], static_cast<size_t>(m[2].length())};
  }
  return t;
}

class TraceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "the trace directory is a system directory";
  }
  // Runs znexec and returns the trace file's lines (none when it is absent).
  std::vector<std::string> traceOf(const std::map<std::string, std::string>& env,
                                   ProcessResult* result = nullptr) {
    ProcessResult run = tree.run("znexec", {"a"}, env);
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    if (result != nullptr) *result = run;
    std::string file = std::string(LOG_DIR) + "znexec.dbg." + first(tree.report(), "pid");
    if (!exists(file)) return {};
    std::vector<std::string> lines = splitLines(readFile(file));
    unlink(file.c_str());
    return lines;
  }
  TraceDirectory directory;
  LauncherTree tree;
};

TEST_F(TraceTest, FullTraceIsWellFormedAndNested) {
  std::vector<std::string> lines = traceOf({{"ZN_DTRACE", "0,31"}});
  ASSERT_GT(lines.size(), 100u);
  EXPECT_TRUE(std::regex_match(lines[0], std::regex(R"(\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4})")))
      << lines[0];
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "src/cxx/shared/ZnCLI/ZnDebugInit.h:     Debug started: ");

  std::vector<std::string> open, topLevel;
  size_t lastBlanks = 0;
  bool sawClassHook = false;
  for (size_t i = 3; i < lines.size(); ++i) {
    SCOPED_TRACE(lines[i]);
    TraceLine t = parse(lines[i]);
    ASSERT_NE(t.kind, TraceLine::Other);
    if (t.kind == TraceLine::Entering) {
      EXPECT_EQ(t.blanks, 2 * open.size());
      if (open.empty()) topLevel.push_back(t.name);
      open.push_back(t.name);
      lastBlanks = t.blanks;
      EXPECT_EQ(t.unit, CMD_UNIT);
    } else if (t.kind == TraceLine::Leaving) {
      ASSERT_FALSE(open.empty());
      EXPECT_EQ(t.name, open.back());
      open.pop_back();
      EXPECT_EQ(t.blanks, 2 * open.size());
      lastBlanks = t.blanks;
    } else {
      // The one message that starts with blanks of its own.
      const size_t ownBlanks = t.text.rfind("(NOTE:", 0) == 0 ? 2 : 0;
      EXPECT_EQ(t.blanks, 1 + lastBlanks + 4 + ownBlanks);
      if (t.text == "enter localVMargs") {
        sawClassHook = true;
        EXPECT_EQ(t.unit, "src/cxx/shared/ZnCLI/ZnCLI.cpp");
      }
    }
  }
  EXPECT_TRUE(open.empty());
  EXPECT_TRUE(sawClassHook);
  EXPECT_EQ(topLevel, (std::vector<std::string>{"ZnCMD::startJVM", "ZnCMD::readKeys",
                                                "ZnCMD::callMain", "ZnCMD::endJVM"}));
  EXPECT_EQ(lines[lines.size() - 2], std::string(CMD_UNIT) + ":Entering ZnCMD::endJVM()");
  EXPECT_EQ(first(tree.report(), "env.ZN_DTRACE"), "0");
}

TEST_F(TraceTest, LevelsDecideWhichLinesAreWritten) {
  struct Case {
    std::string value;
    bool file, entering, messages;
    std::string err;
  };
  const Case cases[] = {
      {"31", true, true, false, ""},
      {"0", true, false, true, ""},
      {"5", true, false, false, ""},
      {"abc", true, false, true, ""},
      {",,31,", true, true, false, ""},
      {"40,0", true, false, true, "DBG: Bad debug level number - 40\n"},
      {"-3", true, false, false, "DBG: Bad debug level number - -3\n"},
      {"", false, false, false, ""},
      {"<unset>", false, false, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("ZN_DTRACE=" + c.value);
    ProcessResult result;
    std::vector<std::string> lines = traceOf({{"ZN_DTRACE", c.value}}, &result);
    EXPECT_EQ(result.err, c.err);
    EXPECT_EQ(!lines.empty(), c.file);
    if (!c.file) continue;
    bool entering = false, messages = false;
    for (size_t i = 2; i < lines.size(); ++i) {
      TraceLine t = parse(lines[i]);
      entering |= t.kind == TraceLine::Entering;
      messages |= t.kind == TraceLine::Message;
    }
    EXPECT_EQ(entering, c.entering);
    EXPECT_EQ(messages, c.messages);
    if (!c.entering && !c.messages) {
      EXPECT_EQ(lines.size(), 2u);
    }
  }
}

TEST(TraceFileProblems, UnopenableTraceFileIsReportedAndTheCommandRuns) {
  if (geteuid() != 0 || exists("/var/opt/zn/logs")) {
    GTEST_SKIP() << "needs root and no trace directory";
  }
  LauncherTree tree;
  ProcessResult result = tree.run("orvex", {}, {{"ZN_DTRACE", "0,31"}});
  EXPECT_EQ(result.exitStatus, 0);
  std::vector<std::string> err = splitLines(result.err);
  ASSERT_EQ(err.size(), 2u) << result.err;
  EXPECT_EQ(err[0], "Can't open debug trace file. '/var/opt/zn/logs/orvex.dbg." +
                        first(tree.report(), "pid") + "'");
  EXPECT_EQ(err[1], "Error #2 - No such file or directory");
}

}  // namespace
}  // namespace zntest
