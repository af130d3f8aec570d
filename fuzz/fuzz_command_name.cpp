// argv[0] as any caller can set it: name reduction, then the factory's
// 255-character cut, case folding and table lookup.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "ZnCLI.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // An argument ends at its first NUL.
  const char* text = reinterpret_cast<const char*>(data);
  const std::string path(text, strnlen(text, size));

  const std::string name = ZnCMD::getName(path);
  const bool isSuffix =
      name.size() <= path.size() && path.compare(path.size() - name.size(), name.size(), name) == 0;
  if (name.find('/') != std::string::npos || !isSuffix) __builtin_trap();

  std::unique_ptr<ZnCMD> command(ZnCLI::createCLI(name));
  // Only a whole name of at most 255 characters can match a table row.
  if (command != nullptr && (name.size() > 255 || command->getClassToLoad().empty())) {
    __builtin_trap();
  }
  return 0;
}
