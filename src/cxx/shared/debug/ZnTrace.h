// Trace line macros. Each one tests the level word before it formats
// anything, so with the trace off a line costs one integer test.
#pragma once

#include "ZnDebug.h"

constexpr int32_t DEBUG_MESSAGE_LEVEL = 1;  // bit 0

inline bool debug_entryExitOn() {
  return _Debug < 0;
}  // bit 31
inline bool debug_messagesOn() {
  return (_Debug & DEBUG_MESSAGE_LEVEL) != 0;
}

#define ZN_TRACE_ENTER(name)                                 \
  do {                                                       \
    if (debug_entryExitOn()) debug_entering(__FILE__, name); \
  } while (0)

#define ZN_TRACE_LEAVE(name)                                          \
  do {                                                                \
    if (debug_entryExitOn()) debug_leaving(__FILE__, name, __LINE__); \
  } while (0)

#define ZN_TRACE_MSG(text)                                 \
  do {                                                     \
    if (debug_messagesOn()) debug_message(__FILE__, text); \
  } while (0)

#define ZN_TRACE_VALUE(label, value)                             \
  do {                                                           \
    if (debug_messagesOn()) debug_value(__FILE__, label, value); \
  } while (0)
