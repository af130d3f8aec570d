// The settings-file reader: any content the global settings file can hold.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "ZnLocaleWriter.h"

namespace {

// In memory where the machine offers it: every run rewrites the file.
std::string settingsPath;
int settingsFile = -1;

void removeSettingsFile() {
  unlink(settingsPath.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  settingsPath = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
  settingsPath += "/zn-fuzz-settings.XXXXXX";
  settingsFile = mkstemp(settingsPath.data());
  if (settingsFile < 0) std::abort();
  std::atexit(removeSettingsFile);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (ftruncate(settingsFile, 0) != 0 ||
      pwrite(settingsFile, data, size, 0) != static_cast<ssize_t>(size)) {
    std::abort();
  }
  char language[ZnLocaleWriter::LOCALE_PART_SIZE];
  char country[ZnLocaleWriter::LOCALE_PART_SIZE];
  const int found = ZnLocaleWriter::readCMSLocale(settingsPath.c_str(), language, country);
  if (found != 0 && found != 1) __builtin_trap();
  for (const char* part : {language, country}) {
    const size_t length = strnlen(part, sizeof language);
    if (length == 0 || length >= sizeof language) __builtin_trap();
  }
  // Without the key in the content the defaults stand.
  if (found == 0 && (std::strcmp(language, "en") != 0 || std::strcmp(country, "US") != 0)) {
    __builtin_trap();
  }
  return 0;
}
