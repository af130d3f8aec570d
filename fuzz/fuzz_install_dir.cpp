// "%b" expansion: an install base from ZN_BASE_DIR put into a template.
#include <cstddef>
#include <cstdint>
#include <string>

#include "PathRules.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // The first byte splits the rest into base and path.
  const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  const size_t split = data[0] % (rest.size() + 1);
  const std::string base = rest.substr(0, split);
  const std::string path = rest.substr(split);

  // Every marker of the original text is replaced, left to right; the
  // inserted base is never searched again.
  std::string expected;
  for (size_t i = 0; i < path.size(); ++i) {
    if (path.compare(i, 2, "%b") == 0) {
      expected += base;
      ++i;
    } else {
      expected += path[i];
    }
  }
  std::string expanded = path;
  expandInstallDir(expanded, base);
  if (expanded != expected) __builtin_trap();
  return 0;
}
