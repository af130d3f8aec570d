// The trace facility: levels, line formats, indentation and the trace file.
#include <gtest/gtest.h>

#include "UnitSupport.h"
#include "ZnTrace.h"

namespace zntest {
namespace {

constexpr char UNIT[] = "tests/unit/trace_test.cpp";

std::string withUnit(const std::string& rest) {
  return std::string(UNIT) + rest;
}

TEST(TraceLines, FourKindsWithNesting) {
  TraceCapture trace(ALL_LEVELS);
  ZN_TRACE_ENTER("A");
  ZN_TRACE_MSG("m1");
  ZN_TRACE_ENTER("B");
  ZN_TRACE_VALUE("name.c_str()", "v");
  ZN_TRACE_VALUE("name.c_str()", static_cast<const char*>(nullptr));
  const int bLine = __LINE__ + 1;
  ZN_TRACE_LEAVE("B");
  ZN_TRACE_VALUE("origUID", -7L);
  const int aLine = __LINE__ + 1;
  ZN_TRACE_LEAVE("A");
  const std::vector<std::string> expected = {
      withUnit(":Entering A()"),
      withUnit(":     m1"),
      withUnit(":  Entering B()"),
      withUnit(":       name.c_str()='v'"),
      withUnit(":       name.c_str()='<NULL>'"),
      withUnit(":  Leaving  B() at " + std::to_string(bLine)),
      withUnit(":       origUID=-7"),
      withUnit(":Leaving  A() at " + std::to_string(aLine)),
  };
  EXPECT_EQ(trace.lines(), expected);
}

TEST(TraceLines, ShortLabelsArePaddedToTwenty) {
  TraceCapture trace(ALL_LEVELS);
  debug_entering("u.cpp", "X");
  debug_message("u.cpp", "%s %n 100%");
  EXPECT_EQ(trace.lines(), (std::vector<std::string>{"u.cpp               :Entering X()",
                                                     "u.cpp               :     %s %n 100%"}));
}

TEST(TraceIndent, DeepNestingIsClampedAndUnbalancedLeavingStopsAtZero) {
  TraceCapture trace(ALL_LEVELS);
  for (int i = 0; i < 600; ++i) debug_indent();
  EXPECT_EQ(strlen(indentSpaces), 1023u);
  for (int i = 0; i < 600; ++i) debug_unindent();
  EXPECT_EQ(indent, 0);
  EXPECT_STREQ(indentSpaces, "");
  for (int i = 0; i < 5; ++i) debug_unindent();
  EXPECT_EQ(indent, 0);
  ZN_TRACE_LEAVE("orphan");
  ZN_TRACE_ENTER("next");
  std::vector<std::string> lines = trace.lines();
  EXPECT_EQ(lines.back(), withUnit(":Entering next()"));
}

TEST(TraceLevels, ParseAddsListedLevels) {
  struct Case {
    const char* value;
    uint32_t bits;
    const char* err;
  };
  const Case cases[] = {
      {"0", 1u, ""},
      {"31", 0x80000000u, ""},
      {"0,31", 0x80000001u, ""},
      {"0,,31,", 0x80000001u, ""},
      {",,", 0u, ""},
      {"abc", 1u, ""},
      {" 7x", 0x80u, ""},
      {"32", 0u, "DBG: Bad debug level number - 32\n"},
      {"40,0", 1u, "DBG: Bad debug level number - 40\n"},
      {"-1,5", 0x20u, "DBG: Bad debug level number - -1\n"},
      {"99999999999999999999", 0u, "DBG: Bad debug level number - 9223372036854775807\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    std::string value = c.value;
    int level = 0;
    testing::internal::CaptureStderr();
    parseDebugString(value.data(), &level);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.err);
    EXPECT_EQ(static_cast<uint32_t>(level), c.bits);
  }
  parseDebugString(nullptr, nullptr);  // nothing to parse, nothing touched
}

TEST(TraceFile, InitializeWritesTheDateAndSplitsTheVariableInPlace) {
  TempDir dir;
  const std::string file = dir.path() + "/znexec.dbg.1";
  ScopedEnv env({{"ZN_TEST_DTRACE", "0,31"}});
  debug_initialize(0, "ZN_TEST_DTRACE", file.c_str());
  EXPECT_EQ(static_cast<uint32_t>(_Debug), 0x80000001u);
  EXPECT_STREQ(getenv("ZN_TEST_DTRACE"), "0");
  FILE* opened = stddbg;
  debug_initialize(0, "ZN_TEST_DTRACE", "/nonexistent/other");  // keeps the open stream
  EXPECT_EQ(stddbg, opened);
  debug_terminate();
  EXPECT_EQ(stddbg, nullptr);
  debug_stop();
  std::vector<std::string> lines = splitLines(readFile(file));
  ASSERT_EQ(lines.size(), 4u);  // two date lines, each followed by an empty line
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[0], lines[2]);
}

TEST(TraceFile, UnopenableFileIsReportedAndLeavesTheTraceOff) {
  ScopedEnv env({{"ZN_TEST_DTRACE", "0,31"}});
  testing::internal::CaptureStderr();
  debug_initialize(0, "ZN_TEST_DTRACE", "/nonexistent/dir/x.dbg.1");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Can't open debug trace file. '/nonexistent/dir/x.dbg.1'\n"
            "Error #2 - No such file or directory\n");
  EXPECT_EQ(_Debug, 0);
  EXPECT_EQ(stddbg, nullptr);
}

}  // namespace
}  // namespace zntest
