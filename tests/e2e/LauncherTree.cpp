#include "LauncherTree.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace zntest {

namespace {
constexpr char DISPATCHER[] = "com/brennic/zn/cli/ZnCommandDispatcher";
constexpr char AUX_DISPATCHER[] = "com/brennic/zn/cli/ZnAuxillaryDispatcher";

CommandSpec cli(const char* name, const char* cls = DISPATCHER) {
  return {name, cls, "ZnCLI", true, true, true};
}
CommandSpec aux(const char* name, const char* cls, const char* kind = "ZnAux") {
  return {name, cls, kind, false, false, true};
}
CommandSpec aux2(const char* name, const char* cls = AUX_DISPATCHER) {
  return {name, cls, "ZnAux2", true, false, true};
}

void makeLink(const std::string& target, const std::string& path) {
  if (symlink(target.c_str(), path.c_str()) != 0) throw std::runtime_error("symlink " + path);
}
}  // namespace

const std::vector<CommandSpec> ALL_COMMANDS = {
    cli("znexec"),
    cli("znnode"),
    cli("znngroup"),
    cli("zntool"),
    cli("znuser"),
    cli("znrole"),
    cli("zntoolbox"),
    cli("znauth"),
    cli("zndebug"),
    cli("znquery"),
    cli("znfolder"),
    cli("znmib"),
    cli("znstm"),
    cli("zntask"),
    cli("znwbemsub"),
    cli("znreport"),
    cli("zndbgui", "com/brennic/zn/gui/debug_gui/ZnDebugMain"),
    aux("orvex", "com/brennic/zn/config/ZnRC"),
    aux("znconfigrepo", "com/brennic/zn/core/repository/ZnConfigRepositoryCLI"),
    aux("znrepositorysave", "com/brennic/zn/core/repository/ZnPgSQLBackup"),
    aux("znrepositoryrestore", "com/brennic/zn/core/repository/ZnPgSQLRestore"),
    aux("zndbdatasave", "com/brennic/zn/core/repository/ZnRepositorySave"),
    aux("znversion", "com/brennic/zn/utilities/version/ZnVersion"),
    aux("zninitialization", "com/brennic/zn/config/ZnInitialization"),
    aux("zninventory",
        "com/brennic/zn/core/tools/datacollection/detached/DetachedCollectorService"),
    aux2("znnodesecurity"),
    aux2("znagentconfig"),
    aux2("znpassword"),
    aux2("zninitconfig"),
    aux2("znlog"),
    aux2("znoracleconfig"),
    aux2("zngetdbinfo"),
    aux2("znvtb", "com/brennic/zn/visualtoolbuilder/TBGuiDriver"),
    {"zninit", "com/brennic/zn/config/ZnInit", "ZnInitAux", false, false, false},
    aux("zngethostname", "com/brennic/zn/utilities/ZnGetHostName", "ZnGetHostNameAux"),
    aux("znmakekeys", "com/brennic/zn/utilities/authenticate/ZnKeyPairGen", "ZnMakeKeysAux"),
};

LauncherTree::LauncherTree(std::vector<std::string> libJars, std::vector<std::string> patchJars)
    : myLauncher(ZN_LAUNCHER_PATH) {
  const std::string& root = base();
  makeDirs(root + "/opt/zn/lib");
  makeDirs(root + "/bin");
  makeDirs(root + "/out", 0777);
  makeDirs(root + "/var/opt/zn/logs");
  // The Java home must be a real one: the JDK reads its modules and
  // security settings below java.home.
  makeLink(ZN_JDK_HOME, root + "/opt/zn/j2re");
  for (const auto& jar : libJars) {
    makeLink(std::string(ZN_FIXTURE_JAR_DIR) + "/" + jar + ".jar",
             root + "/opt/zn/lib/" + jar + ".jar");
  }
  if (!patchJars.empty()) makeDirs(root + "/opt/zn/patch");
  for (const auto& jar : patchJars) {
    makeLink(std::string(ZN_FIXTURE_JAR_DIR) + "/" + jar + ".jar",
             root + "/opt/zn/patch/" + jar + ".jar");
  }
  setLauncher(myLauncher);
}

void LauncherTree::setLauncher(const std::string& program) {
  myLauncher = program;
  for (const CommandSpec& command : ALL_COMMANDS) {
    unlink(commandPath(command.name).c_str());
    makeLink(program, commandPath(command.name));
  }
}

std::map<std::string, std::string> LauncherTree::baseEnv() const {
  return {{"PATH", "/usr/bin:/bin"},
          {"LANG", "C.UTF-8"},
          {"ZN_BASE_DIR", base()},
          {"ZN_TEST_REPORT", reportPath()},
          {"ASAN_OPTIONS", "detect_leaks=0:handle_segv=0:allow_user_segv_handler=1"}};
}

ProcessResult LauncherTree::run(const std::string& command, const std::vector<std::string>& args,
                                const std::map<std::string, std::string>& env,
                                ProcessOptions options) const {
  options.env = baseEnv();
  for (const auto& [key, value] : env) {
    if (value == "<unset>") {
      options.env.erase(key);
    } else {
      options.env[key] = value;
    }
  }
  options.args = args;
  // The report is written by the key hand-over and by main, possibly as
  // different users.
  writeFile(reportPath(), "");
  chmod(reportPath().c_str(), 0666);
  std::string program = command.find('/') == std::string::npos ? commandPath(command) : command;
  return runProcess(program, options);
}

Report LauncherTree::report() const {
  Report report;
  for (const std::string& line : splitLines(readFile(reportPath()))) {
    size_t equals = line.find('=');
    if (equals != std::string::npos)
      report.emplace(line.substr(0, equals), line.substr(equals + 1));
  }
  return report;
}

std::string first(const Report& report, const std::string& key) {
  auto found = report.find(key);
  return found == report.end() ? "<missing>" : found->second;
}

}  // namespace zntest
