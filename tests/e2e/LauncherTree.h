// A temporary install tree (ZN_BASE_DIR) with the fixture archives, the
// build JDK as its Java runtime, and one link per command name to the
// launcher.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "TestSupport.h"

namespace zntest {

struct CommandSpec {
  const char* name;
  const char* javaClass;
  const char* commandClass;  // ZnCLI, ZnAux, ZnAux2, ZnInitAux, ...
  bool passesName;           // the command name is the first Java argument
  bool handsOverKeys;
  bool dropsPrivileges;
};

// The 36 commands, typed from the command reference, not from the tables.
extern const std::vector<CommandSpec> ALL_COMMANDS;

using Report = std::multimap<std::string, std::string>;

class LauncherTree {
 public:
  // `libJars` go to opt/zn/lib, `patchJars` to opt/zn/patch (fixture names
  // without ".jar").
  explicit LauncherTree(std::vector<std::string> libJars = {"commands", "auth"},
                        std::vector<std::string> patchJars = {});

  const std::string& base() const { return myDir.path(); }
  std::string reportPath() const { return base() + "/out/report"; }
  std::string commandPath(const std::string& name) const { return base() + "/bin/" + name; }

  // The environment every run starts from.
  std::map<std::string, std::string> baseEnv() const;

  // Runs `command` through its link; `env` is added to (or, with an empty
  // optional-like marker "<unset>", removed from) the base environment.
  ProcessResult run(const std::string& command, const std::vector<std::string>& args = {},
                    const std::map<std::string, std::string>& env = {},
                    ProcessOptions options = {}) const;

  Report report() const;
  // The launcher program the links point to; a set-user-id test replaces it.
  void setLauncher(const std::string& program);

 private:
  TempDir myDir{"zntree"};
  std::string myLauncher;
};

std::string first(const Report& report, const std::string& key);

}  // namespace zntest
