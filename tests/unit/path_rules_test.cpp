// The pure rules behind paths, archive names and option tokens.
#include <gtest/gtest.h>

#include "PathRules.h"

namespace {

TEST(ExpandInstallDir, ReplacesEveryMarkerOnce) {
  struct Case {
    const char* text;
    const char* base;
    const char* expanded;
  };
  const Case cases[] = {
      {"%b/opt/zn/j2re/", "", "/opt/zn/j2re/"},
      {"%b/opt/zn/lib/", "/mnt/alt", "/mnt/alt/opt/zn/lib/"},
      {"%b/opt/zn/lib/", "/mnt/alt/", "/mnt/alt//opt/zn/lib/"},
      {"/x:%b/a:%b/b", "/mnt/alt", "/x:/mnt/alt/a:/mnt/alt/b"},
      {"%b/q", "/p%b", "/p%b/q"},
      {"%b%b", "%b%b", "%b%b%b%b"},
      {"%%b", "/B", "%/B"},
      {"%B %c %", "/B", "%B %c %"},
      {"/usr/lib", "/B", "/usr/lib"},
      {"%b", "", ""},
      {"", "/B", ""},
  };
  for (const Case& c : cases) {
    std::string text = c.text;
    expandInstallDir(text, c.base);
    EXPECT_EQ(text, c.expanded) << c.text << " with " << c.base;
  }
  std::string huge(20000, 'x');
  huge += "%b";
  expandInstallDir(huge, std::string(5000, '%') + "b");
  EXPECT_EQ(huge.size(), 25001u);
}

TEST(JoinPathPiece, NeverAddsStraySeparators) {
  struct Case {
    const char* list;
    const char* piece;
    const char* joined;
  };
  for (const Case& c : {Case{"", "", ""}, Case{"", "a", "a"}, Case{"a", "", "a"},
                        Case{"a", "b", "a:b"}, Case{"a:", "b", "a::b"}}) {
    std::string list = c.list;
    joinPathPiece(list, c.piece, ":");
    EXPECT_EQ(list, c.joined) << c.list << " + " << c.piece;
  }
}

TEST(IsArchiveName, FirstOccurrenceMustEndTheName) {
  struct Case {
    const char* name;
    bool archive;
  };
  const Case cases[] = {
      {"x.jar", true},      {".jar", true},    {"d.jar", true},  {"x.JAR", false},
      {"x.jar.old", false}, {"x.jarx", false}, {"xjar", false},  {"x.jar.jar", false},
      {"jar", false},       {"", false},       {".", false},     {"..", false},
      {"a b.jar", true},    {"x..jar", true},  {".jar.", false},
  };
  for (const Case& c : cases) EXPECT_EQ(isArchiveName(c.name, ".jar"), c.archive) << c.name;
}

TEST(JvmOptionTokens, OnlyDashesStartTokensAndOnlySpacesEndThem) {
  using Tokens = std::vector<std::string>;
  struct Case {
    std::string value;
    Tokens tokens;
  };
  const Case cases[] = {
      {"-Xmx512m -Dfoo=bar", {"-Xmx512m", "-Dfoo=bar"}},
      {"  -a   -b  ", {"-a", "-b"}},
      {"abc-def", {"-def"}},
      {"-Dx=a b", {"-Dx=a"}},
      {"-a\t-b\n-c", {"-a\t-b\n-c"}},
      {"-", {"-"}},
      {"- -", {"-", "-"}},
      {"x-y-z w", {"-y-z"}},
      {"no dashes here", {}},
      {"", {}},
      {std::string("-a\0-b", 5), {std::string("-a\0-b", 5)}},
  };
  for (const Case& c : cases) EXPECT_EQ(jvmOptionTokens(c.value), c.tokens) << c.value;
  EXPECT_EQ(jvmOptionTokens("-" + std::string(1 << 20, 'x')).at(0).size(), (1u << 20) + 1);
}

}  // namespace
