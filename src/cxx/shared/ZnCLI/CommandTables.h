// The command tables: which command names exist, which Java class each one
// runs and which command class runs it.
#pragma once

#include <cstddef>

struct CommandRow {
  const char* name;         // lower case, as matched
  const char* classToLoad;  // slash-separated Java class
};

enum class CommandKind { CLI, Aux, Aux2, InitAux, GetHostNameAux, MakeKeysAux };

struct CommandTable {
  const char* tableName;
  const CommandRow* rows;
  size_t rowCount;
  CommandKind kind;             // command class created for a match...
  const CommandKind* rowKinds;  // ...unless the table names one per row
};

extern const CommandRow legalCLI[17];
extern const CommandRow legalAux[9];
extern const CommandRow legalAux2[8];
extern const CommandRow specialAux[3];

// The four tables in lookup order.
extern const CommandTable COMMAND_TABLES[4];

struct CommandMatch {
  const CommandRow* row;  // null when nothing matches
  CommandKind kind;
};

// The row whose name equals `key` exactly, searched in lookup order.
CommandMatch findCommand(const char* key);
