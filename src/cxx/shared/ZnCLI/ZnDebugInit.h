// ZnDebugInit: starts the debug trace of one command.
//
// Constructing it is the whole operation: with ZN_DTRACE set to a non-empty
// value the trace goes to DEBUG_FILE_PATH + name + TRACE_SUFFIX + "." + pid,
// with the levels listed in the variable; otherwise nothing happens.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ZnTrace.h"
#ifdef ZN_HARDENED_SETUID
#include "SetuidGuard.h"
#endif

constexpr char TRACE_ENV_VAR[] = "ZN_DTRACE";
constexpr char DEBUG_FILE_PATH[] = "/var/opt/zn/logs/";
constexpr char TRACE_SUFFIX[] = ".dbg";
constexpr char DEBUG_PID[] = ".%d";

class ZnDebugInit {
 public:
  explicit ZnDebugInit(const std::string& name) {
    std::string fileName = std::string(DEBUG_FILE_PATH) + name + TRACE_SUFFIX;
    const char* value = getenv(TRACE_ENV_VAR);
    if (value == nullptr || *value == '\0') return;
    char pid[24];
    snprintf(pid, sizeof pid, DEBUG_PID, static_cast<int>(getpid()));
    fileName += pid;
#ifdef ZN_HARDENED_SETUID
    // Opened here without following links or truncating; debug_initialize
    // keeps a stream that is already open.
    if (!setuidguard::startTraceStream(fileName.c_str())) return;
#endif
    debug_initialize(0, TRACE_ENV_VAR, fileName.c_str());
    ZN_TRACE_MSG("Debug started: ");
  }
};
