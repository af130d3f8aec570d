// Locale names from LC_ALL and from the settings file: langToJava,
// getUserLocale and decomposeLocale.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "ZnLocaleWriter.h"

namespace {

constexpr size_t MAX_INPUT = 64;  // longer values exercise nothing new

void checkParts(const char* locale) {
  char language[ZnLocaleWriter::LOCALE_PART_SIZE];
  char country[ZnLocaleWriter::LOCALE_PART_SIZE];
  ZnLocaleWriter::decomposeLocale(locale, language, country);
  for (const char* part : {language, country}) {
    const size_t length = strnlen(part, sizeof language);
    if (length == 0 || length >= sizeof language || std::strchr(part, '_') != nullptr) {
      __builtin_trap();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* text = reinterpret_cast<const char*>(data);
  const std::string value(text, strnlen(text, size < MAX_INPUT ? size : MAX_INPUT));

  const char* java = ZnLocaleWriter::langToJava(value.c_str());
  if (java == nullptr || std::strchr(java, '.') != nullptr) __builtin_trap();
  checkParts(java);
  checkParts(value.c_str());

  setenv("LC_ALL", value.c_str(), 1);
  const char* user = ZnLocaleWriter::getUserLocale();
  if (user == nullptr) __builtin_trap();
  checkParts(user);
  return 0;
}
