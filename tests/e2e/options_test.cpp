// The option list handed to the virtual machine, and the paths in it.
#include <gtest/gtest.h>

#include "LauncherTree.h"

namespace zntest {
namespace {

constexpr char ECHO[] = "addJVMOption(): ";
constexpr char CLASS_PATH_TAIL[] = "/opt/tessaly/webapps/ROOT/ui/jsp/resources:/opt/tessaly/lib";

class OptionsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { tree = new LauncherTree(); }
  static void TearDownTestSuite() { delete tree; }
  static LauncherTree* tree;

  // The echoed options of one run, in order.
  static std::vector<std::string> echoed(const ProcessResult& result) {
    std::vector<std::string> options;
    for (const std::string& line : splitLines(result.out)) {
      if (line.rfind(ECHO, 0) == 0) options.push_back(line.substr(sizeof ECHO - 1));
    }
    return options;
  }

  static std::string archivesIn(const std::string& dir) {
    std::string list;
    for (const std::string& name : directoryOrder(dir)) {
      size_t at = name.find(".jar");
      if (at == std::string::npos || at + 4 != name.size()) continue;
      list += (list.empty() ? "" : ":") + dir + name;
    }
    return list;
  }

  static std::string classPath(const std::string& base) {
    std::string path = base + "/opt/zn/lib/zn.jar";
    for (const std::string& piece :
         {archivesIn(base + "/opt/zn/lib/"), archivesIn(base + "/opt/zn/j2re/lib/")}) {
      if (!piece.empty()) path += ":" + piece;
    }
    return path + ":" + CLASS_PATH_TAIL;
  }

  static std::vector<std::string> standardOptions(const std::string& base) {
    return {"-Xms16m",
            "-Xmx128m",
            "-Xmn8m",
            "-XX:SurvivorRatio=3",
            "-XX:TargetSurvivorRatio=75",
            "-XX:MinHeapFreeRatio=30",
            "-XX:MaxHeapFreeRatio=50",
            "-XX:+UseCMSCompactAtFullCollection",
            "-Dsun.rmi.dgc.server.gcInterval=1800000",
            "-Dsun.rmi.dgc.client.gcInterval=1800000",
            "",
            "",
            "-DZN_BASE_DIR=" + base,
            "-Dnetworkaddress.cache.ttl=30",
            "-Djava.class.path=" + classPath(base),
            "-Djava.home=" + base + "/opt/zn/j2re/",
            "-Djava.library.path=" + base + "/opt/zn/j2re/lib/i386/:" + base +
                "/opt/zn/j2re/lib/i386/server:" + base + "/opt/zn/j2re/lib/i386/native_threads:" +
                base + "/opt/zn/j2re/lib/i386/hotspot:" + base + "/opt/zn/lib/:" + base +
                "/opt/zn/j2re/lib/:/usr/lib:/opt/tessaly/lib",
            "-Djava.security.policy=" + base + "/etc/opt/zn/config/java.policy",
            "-Dzn.codeBase=" + base + "/opt/zn/lib/*",
            "-Djava.protocol.handler.pkgs=org.apache.naming.resources",
            "-ea",
            "-Dzn.path=/usr/bin:/bin"};
  }
};
LauncherTree* OptionsTest::tree = nullptr;

TEST_F(OptionsTest, StandardOptionListPerCommandClass) {
  std::vector<std::string> aux = standardOptions(tree->base());
  std::vector<std::string> cli = aux;
  cli.insert(cli.begin(), {"-client", "-Xint"});
  struct Case {
    const char* command;
    const std::vector<std::string>& options;
  };
  for (const Case& c : {Case{"znexec", cli}, Case{"zndbgui", cli}, Case{"orvex", aux},
                        Case{"znlog", aux}, Case{"zninit", aux}}) {
    SCOPED_TRACE(c.command);
    ProcessResult result = tree->run(c.command, {}, {{"ZN_SHOW_JVM_OPTS", ""}});
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_EQ(echoed(result), c.options);
  }
  EXPECT_EQ(cli.size(), 24u);
  EXPECT_EQ(aux.size(), 22u);
  EXPECT_EQ(tree->run("znexec").out, "");  // no echo without the switch
}

TEST_F(OptionsTest, SwitchRowsAndTokensComeInTheirPlaces) {
  const std::string logs = tree->base() + "/var/opt/zn/logs/";
  struct Case {
    std::map<std::string, std::string> env;
    std::vector<std::string> extra;  // between "-ea" and the zn.path row
  };
  const Case cases[] = {
      {{{"ZN_VERBOSE_TRACE", ""}}, {"-verbose:class"}},
      {{{"ZN_GC_TRACE", ""}}, {"-Xloggc:" + logs + "orvex.gc.log"}},
      {{{"FOREGROUND", "no"}}, {"-DFOREGROUND=true"}},
      {{{"ZN_JVM_OPTS", "-Xmx512m -Dzn.test=bar"}}, {"-Xmx512m", "-Dzn.test=bar"}},
      {{{"ZN_JVM_OPTS", "  -a   b-c -Dx=a\tb "}}, {"-a", "-c", "-Dx=a\tb"}},
      {{{"ZN_JVM_OPTS", ""}}, {}},
      {{{"ZN_JVM_OPTS", "-D" + std::string(100000, 'y')}}, {"-D" + std::string(100000, 'y')}},
      {{{"ZN_GC_TRACE", ""}, {"FOREGROUND", ""}, {"ZN_JVM_OPTS", "-Dzn.test=1"}},
       {"-Xloggc:" + logs + "orvex.gc.log", "-Dzn.test=1", "-DFOREGROUND=true"}},
  };
  for (const Case& c : cases) {
    std::map<std::string, std::string> env = c.env;
    SCOPED_TRACE(env.begin()->first + "=" + env.begin()->second.substr(0, 40));
    env["ZN_SHOW_JVM_OPTS"] = "1";
    ProcessResult result = tree->run("orvex", {}, env);
    ASSERT_EQ(result.exitStatus, 0) << result.err;
    std::vector<std::string> expected = standardOptions(tree->base());
    expected.insert(expected.end() - 1, c.extra.begin(), c.extra.end());
    EXPECT_EQ(echoed(result), expected);
  }
  ProcessResult result = tree->run("orvex", {}, {{"ZN_JVM_OPTS", "-Dzn.test=late -Xmx64m"}});
  EXPECT_EQ(first(tree->report(), "prop.zn.test"), "late");
}

TEST_F(OptionsTest, OptionLimitIsForty) {
  auto tokens = [](int count) {
    std::string value;
    for (int i = 0; i < count; ++i) value += " -Dt" + std::to_string(i) + "=" + std::to_string(i);
    return value;
  };
  struct Case {
    const char* command;
    int tokenCount;
    int exitStatus;
  };
  for (const Case& c :
       {Case{"znexec", 16, 0}, Case{"znexec", 17, 1}, Case{"orvex", 18, 0}, Case{"orvex", 19, 1}}) {
    SCOPED_TRACE(std::string(c.command) + " " + std::to_string(c.tokenCount));
    ProcessResult result =
        tree->run(c.command, {}, {{"ZN_JVM_OPTS", tokens(c.tokenCount)}, {"ZN_SHOW_JVM_OPTS", ""}});
    EXPECT_EQ(result.exitStatus, c.exitStatus) << result.err;
    EXPECT_EQ(echoed(result).size(), 40u);
    if (c.exitStatus != 0) {
      EXPECT_EQ(result.err, "ZnDaemon::addJVMOption: Insufficient space for option\n");
    }
  }
}

TEST_F(OptionsTest, PropertiesReachJava) {
  const std::string& base = tree->base();
  ASSERT_EQ(tree->run("znexec", {}, {{"DISPLAY", ":3"}, {"BROWSER", "lynx"}}).exitStatus, 0);
  Report report = tree->report();
  const std::map<std::string, std::string> expected = {
      {"prop.java.class.path", classPath(base)},
      {"prop.java.home", base + "/opt/zn/j2re/"},
      {"prop.zn.display", ":3"},
      {"prop.zn.browser", "lynx"},
      {"prop.zn.path", "/usr/bin:/bin"},
      {"prop.ZN_BASE_DIR", base},
      {"prop.zn.codeBase", base + "/opt/zn/lib/*"},
      {"prop.java.security.policy", base + "/etc/opt/zn/config/java.policy"},
      {"prop.networkaddress.cache.ttl", "30"},
      {"prop.sun.rmi.dgc.server.gcInterval", "1800000"},
      {"prop.sun.rmi.dgc.client.gcInterval", "1800000"},
      {"prop.java.protocol.handler.pkgs", "org.apache.naming.resources"},
      {"prop.FOREGROUND", "<unset>"},
  };
  for (const auto& [key, value] : expected) EXPECT_EQ(first(report, key), value) << key;
}

}  // namespace
}  // namespace zntest
