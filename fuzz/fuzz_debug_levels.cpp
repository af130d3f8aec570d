// The ZN_DTRACE level list, parsed in place like the environment's copy.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "ZnDebug.h"

namespace {

// The level word the list describes: each comma-separated, non-empty piece
// reads as strtol does, and only the numbers 0 to 31 set their bit.
int expectedLevel(const std::string& value) {
  unsigned level = 0;
  size_t start = 0;
  while (start <= value.size()) {
    size_t comma = value.find(',', start);
    const std::string piece =
        value.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    if (!piece.empty()) {
      long number = std::strtol(piece.c_str(), nullptr, 10);
      if (number >= 0 && number <= 31) level |= 1u << number;
    }
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return static_cast<int>(level);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<char> value(data, data + size);
  value.push_back('\0');
  const std::string original(value.data());

  int level = 0;
  parseDebugString(value.data(), &level);
  if (level != expectedLevel(original)) __builtin_trap();
  return 0;
}
