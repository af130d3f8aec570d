#include "CommandTables.h"

#include <cstring>

namespace {
constexpr char DISPATCHER[] = "com/brennic/zn/cli/ZnCommandDispatcher";
constexpr char AUX_DISPATCHER[] = "com/brennic/zn/cli/ZnAuxillaryDispatcher";
}  // namespace

const CommandRow legalCLI[17] = {
    {"znexec", DISPATCHER},
    {"znnode", DISPATCHER},
    {"znngroup", DISPATCHER},
    {"zntool", DISPATCHER},
    {"znuser", DISPATCHER},
    {"znrole", DISPATCHER},
    {"zntoolbox", DISPATCHER},
    {"znauth", DISPATCHER},
    {"zndebug", DISPATCHER},
    {"znquery", DISPATCHER},
    {"znfolder", DISPATCHER},
    {"znmib", DISPATCHER},
    {"znstm", DISPATCHER},
    {"zntask", DISPATCHER},
    {"znwbemsub", DISPATCHER},
    {"znreport", DISPATCHER},
    {"zndbgui", "com/brennic/zn/gui/debug_gui/ZnDebugMain"},
};

// The ninth row is kept as shipped but is not a command: lookup keys are
// folded to lower case before an exact comparison, so its mixed-case name
// never matches, and its class text (a class name, a blank and a word)
// names no loadable class. It is not installed as a command name.
const CommandRow legalAux[9] = {
    {"orvex", "com/brennic/zn/config/ZnRC"},
    {"znconfigrepo", "com/brennic/zn/core/repository/ZnConfigRepositoryCLI"},
    {"znrepositorysave", "com/brennic/zn/core/repository/ZnPgSQLBackup"},
    {"znrepositoryrestore", "com/brennic/zn/core/repository/ZnPgSQLRestore"},
    {"zndbdatasave", "com/brennic/zn/core/repository/ZnRepositorySave"},
    {"znversion", "com/brennic/zn/utilities/version/ZnVersion"},
    {"zninitialization", "com/brennic/zn/config/ZnInitialization"},
    {"zninventory", "com/brennic/zn/core/tools/datacollection/detached/DetachedCollectorService"},
    {"zninventoryDMI",
     "com/brennic/zn/core/tools/datacollection/detached/DetachedCollectorService -DMI"},
};

const CommandRow legalAux2[8] = {
    {"znnodesecurity", AUX_DISPATCHER}, {"znagentconfig", AUX_DISPATCHER},
    {"znpassword", AUX_DISPATCHER},     {"zninitconfig", AUX_DISPATCHER},
    {"znlog", AUX_DISPATCHER},          {"znoracleconfig", AUX_DISPATCHER},
    {"zngetdbinfo", AUX_DISPATCHER},    {"znvtb", "com/brennic/zn/visualtoolbuilder/TBGuiDriver"},
};

const CommandRow specialAux[3] = {
    {"zninit", "com/brennic/zn/config/ZnInit"},
    {"zngethostname", "com/brennic/zn/utilities/ZnGetHostName"},
    {"znmakekeys", "com/brennic/zn/utilities/authenticate/ZnKeyPairGen"},
};

namespace {
constexpr CommandKind SPECIAL_KINDS[3] = {CommandKind::InitAux, CommandKind::GetHostNameAux,
                                          CommandKind::MakeKeysAux};
}  // namespace

const CommandTable COMMAND_TABLES[4] = {
    {"legalCLI", legalCLI, 17, CommandKind::CLI, nullptr},
    {"legalAux", legalAux, 9, CommandKind::Aux, nullptr},
    {"legalAux2", legalAux2, 8, CommandKind::Aux2, nullptr},
    {"specialAux", specialAux, 3, CommandKind::InitAux, SPECIAL_KINDS},
};

CommandMatch findCommand(const char* key) {
  for (const CommandTable& table : COMMAND_TABLES) {
    for (size_t i = 0; i < table.rowCount; ++i) {
      if (std::strcmp(key, table.rows[i].name) == 0) {
        return {&table.rows[i], table.rowKinds ? table.rowKinds[i] : table.kind};
      }
    }
  }
  return {nullptr, CommandKind::CLI};
}
