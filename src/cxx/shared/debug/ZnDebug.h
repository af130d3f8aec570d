// Debug trace facility: process-wide trace state and the debug_* functions.
//
// The trace is off (every level clear, no stream) until a command starts it
// with ZnDebugInit. Bit 0 of _Debug turns on message and value lines, bit 31
// (the sign bit) Entering and Leaving lines. Lines are written through the
// ZN_TRACE_* macros of ZnTrace.h, which test the level before formatting
// anything.
//
// Decisions where the trace has a choice:
// - A trace file that cannot be opened leaves every level off for the rest of
//   the process (after the two lines on standard error): the command's own
//   standard error is never mixed with trace lines it did not ask for.
// - A negative level number in the level list is reported with the same
//   "bad debug level" line as a number above 31, and turns nothing on.
// - indentSpaces holds at most 1023 blanks: deeper nesting keeps 1023 blanks
//   (the depth is still counted, so the lines pair up again on the way out),
//   and a Leaving line without a matching Entering line never takes the
//   depth below 0.
#pragma once

#include <cstdint>
#include <cstdio>

constexpr int DEBUG_INDENT_CAPACITY = 1024;

extern int32_t _Debug;
extern FILE* stddbg;
extern int closeDebug;
extern int indent;
extern char indentSpaces[DEBUG_INDENT_CAPACITY];

void debug_initialize(int level, const char* envVar, const char* fileName);
void parseDebugString(char* value, int* level);
void debug_indent();
void debug_unindent();
void debug_reset_indent();
void debug_setLevel(int level);
void debug_stop();
void debug_terminate();

// The four line kinds. Callers go through the macros of ZnTrace.h, which
// supply the unit label and the line number and test the level first.
void debug_entering(const char* unit, const char* name);
void debug_leaving(const char* unit, const char* name, int line);
void debug_message(const char* unit, const char* text);
void debug_value(const char* unit, const char* label, const char* value);
void debug_value(const char* unit, const char* label, long value);
