// The archive-name match of the directory scan: any name a directory can
// hold, against ".jar" and against other patterns.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "PathRules.h"

namespace {

void check(std::string_view name, std::string_view pattern) {
  const bool match = isArchiveName(name, pattern);
  const bool endsWith =
      name.size() >= pattern.size() && name.substr(name.size() - pattern.size()) == pattern;
  // A match ends the name; a name that ends with the pattern but does not
  // match holds it earlier too.
  if (match && !endsWith) __builtin_trap();
  if (!match && endsWith && name.find(pattern) >= name.size() - pattern.size()) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  check(input, ".jar");
  if (size > 0) {
    // The first byte cuts a pattern off the front of the rest.
    const std::string_view rest = input.substr(1);
    const size_t length = data[0] % 8 < rest.size() ? data[0] % 8 : rest.size();
    check(rest.substr(length), rest.substr(0, length));
  }
  return 0;
}
