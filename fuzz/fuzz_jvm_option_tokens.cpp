// The ZN_JVM_OPTS tokeniser.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "PathRules.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view value(reinterpret_cast<const char*>(data), size);
  size_t at = 0;
  // Each token starts at the first "-" after the previous one and runs to
  // the next blank or the end; everything between tokens is skipped.
  for (const std::string& token : jvmOptionTokens(value)) {
    const size_t start = value.find('-', at);
    if (start == std::string_view::npos || value.substr(start, token.size()) != token) {
      __builtin_trap();
    }
    at = start + token.size();
    if (token.find(' ') != std::string::npos || (at < value.size() && value[at] != ' ')) {
      __builtin_trap();
    }
  }
  if (value.find('-', at) != std::string_view::npos) __builtin_trap();  // a token was lost
  return 0;
}
