#include "ZnDebug.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>

int32_t _Debug = 0;
FILE* stddbg = nullptr;
int closeDebug = 1;
int indent = 0;
char indentSpaces[DEBUG_INDENT_CAPACITY] = "";

namespace {

constexpr int kIndentStep = 2;
constexpr int kHighestLevel = 31;

// indentSpaces = `depth` blanks, clamped to what the buffer holds.
void setIndentSpaces(int depth) {
  int blanks = depth < 0 ? 0 : depth;
  if (blanks > DEBUG_INDENT_CAPACITY - 1) blanks = DEBUG_INDENT_CAPACITY - 1;
  std::memset(indentSpaces, ' ', static_cast<size_t>(blanks));
  indentSpaces[blanks] = '\0';
}

void writeDateLine() {
  time_t now = time(nullptr);
  if (now <= 0) return;
  struct tm* local = localtime(&now);
  if (local == nullptr) return;
  fprintf(stddbg, "%s\n", asctime(local));
}

}  // namespace

void debug_initialize(int level, const char* envVar, const char* fileName) {
  if (stddbg == nullptr) {
    if (fileName == nullptr) {
      stddbg = stderr;
      closeDebug = 0;
    } else {
      stddbg = fopen(fileName, "w");
      if (stddbg == nullptr) {
        int error = errno;
        fprintf(stderr, "Can't open debug trace file. '%s'\n", fileName);
        fprintf(stderr, "Error #%d - %s\n", error, strerror(error));
        return;  // every level stays off
      }
    }
  }
  setbuf(stddbg, nullptr);
  writeDateLine();
  _Debug |= level;
  parseDebugString(getenv(envVar), &_Debug);
}

void parseDebugString(char* value, int* level) {
  if (value == nullptr) return;
  for (char* piece = strtok(value, ","); piece != nullptr; piece = strtok(nullptr, ",")) {
    long number = strtol(piece, nullptr, 10);
    if (number < 0 || number > kHighestLevel) {
      fprintf(stderr, "DBG: Bad debug level number - %ld\n", number);
      continue;
    }
    *level = static_cast<int>(static_cast<unsigned>(*level) | (1u << number));
  }
}

void debug_indent() {
  setIndentSpaces(indent);
  if (indent <= INT_MAX - kIndentStep) indent += kIndentStep;
}

void debug_unindent() {
  indent = indent >= kIndentStep ? indent - kIndentStep : 0;
  setIndentSpaces(indent);
}

void debug_reset_indent() {
  indent = 0;
  indentSpaces[0] = '\0';
}

void debug_setLevel(int level) {
  _Debug |= level;
}

void debug_stop() {
  _Debug = 0;
}

void debug_terminate() {
  if (closeDebug == 1 && stddbg != nullptr) {
    fclose(stddbg);
    stddbg = nullptr;
  }
}

void debug_entering(const char* unit, const char* name) {
  if (stddbg == nullptr) return;
  debug_indent();
  fprintf(stddbg, "%-20s:%sEntering %s()\n", unit, indentSpaces, name);
}

void debug_leaving(const char* unit, const char* name, int line) {
  if (stddbg == nullptr) return;
  debug_unindent();
  fprintf(stddbg, "%-20s:%sLeaving  %s() at %d\n", unit, indentSpaces, name, line);
}

void debug_message(const char* unit, const char* text) {
  if (stddbg == nullptr) return;
  fprintf(stddbg, "%-20s: ", unit);
  fprintf(stddbg, "%s    %s\n", indentSpaces, text);
}

void debug_value(const char* unit, const char* label, const char* value) {
  if (stddbg == nullptr) return;
  fprintf(stddbg, "%-20s: ", unit);
  fprintf(stddbg, "%s    %s='%s'\n", indentSpaces, label, value == nullptr ? "<NULL>" : value);
}

void debug_value(const char* unit, const char* label, long value) {
  if (stddbg == nullptr) return;
  fprintf(stddbg, "%-20s: ", unit);
  fprintf(stddbg, "%s    %s=%ld\n", indentSpaces, label, value);
}
