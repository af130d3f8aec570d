// The user's locale and the CMSLocale entry of the global settings file.
#include "ZnLocaleWriter.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

const char* const GLOBAL_SETTINGS_FILE = "/etc/opt/zn/config/globalsettings.props";
const char* const CMS_LOCALE_KEY = "CMSLocale";

namespace {

// The next token of `rest` as strtok would give it (leading separators skipped, the token
// ends before the next separator), without writing into the text. Advances `rest` past the
// token and its separator. Tokens are never empty, so an empty result means there is none.
std::string_view nextToken(std::string_view& rest, char separator) {
  std::size_t start = rest.find_first_not_of(separator);
  if (start == std::string_view::npos) {
    rest = {};
    return {};
  }
  rest.remove_prefix(start);
  std::string_view token = rest.substr(0, rest.find(separator));
  rest.remove_prefix(std::min(rest.size(), token.size() + 1));
  return token;
}

// Copies `text` into a buffer of LOCALE_PART_SIZE bytes, cut to the first 15 characters.
void copyPart(std::string_view text, char* buffer) {
  std::size_t length = std::min(text.size(), ZnLocaleWriter::LOCALE_PART_SIZE - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

void reportUnopenable(const char* path) {
  std::fprintf(stderr, "Unable to open config file %s.\n", path);
}

// True when the file is not empty and its last byte is not a line end.
bool endsInsideLine(const char* path) {
  std::FILE* file = std::fopen(path, "rb");
  if (!file) return false;
  bool inside = std::fseek(file, -1, SEEK_END) == 0 && std::fgetc(file) != '\n';
  std::fclose(file);
  return inside;
}

}  // namespace

const char* ZnLocaleWriter::getUserLocale() {
  const char* value = std::getenv("LC_ALL");
  if (!value) return DLOCALE;
  if (std::strchr(value, '_')) return keep(value, std::min<std::size_t>(std::strlen(value), 5));
  return langToJava(value);
}

void ZnLocaleWriter::decomposeLocale(const char* locale, char* language, char* country) {
  std::string_view rest = locale ? locale : "";
  std::string_view first = nextToken(rest, '_');
  std::string_view second = first.empty() ? std::string_view() : nextToken(rest, '_');
  copyPart(first.empty() ? "en" : first, language);
  copyPart(second.empty() ? "US" : second, country);
}

int ZnLocaleWriter::readCMSLocale(char* language, char* country) {
  return readCMSLocale(GLOBAL_SETTINGS_FILE, language, country);
}

int ZnLocaleWriter::readCMSLocale(const char* path, char* language, char* country) {
  bool found = false;
  if (std::FILE* file = std::fopen(path, "r")) {
    char line[64];
    while (!found && std::fgets(line, sizeof line, file)) {
      std::string_view rest = line;
      if (nextToken(rest, '=') != CMS_LOCALE_KEY) continue;
      std::string value(nextToken(rest, '='));
      decomposeLocale(value.c_str(), language, country);
      found = true;
    }
    // A stream that opens but cannot be read (a directory) is as good as unopenable.
    if (!found && std::ferror(file)) reportUnopenable(path);
    std::fclose(file);
  } else {
    reportUnopenable(path);
  }
  if (!found) decomposeLocale(nullptr, language, country);
  return found ? 1 : 0;
}

void ZnLocaleWriter::writeCMSLocale() {
  writeCMSLocale(GLOBAL_SETTINGS_FILE);
}

void ZnLocaleWriter::writeCMSLocale(const char* path) {
  char language[LOCALE_PART_SIZE];
  char country[LOCALE_PART_SIZE];
  if (readCMSLocale(path, language, country)) {
    std::printf("Note: CMSLocale not set. Existing CMSLocale is %s_%s\n", language, country);
    return;
  }
  bool newLineFirst = endsInsideLine(path);
  std::FILE* file = std::fopen(path, "a");
  if (!file) {
    reportUnopenable(path);
    return;
  }
  std::string_view locale = getUserLocale();
  locale = locale.substr(0, locale.find_first_of("\r\n"));
  std::fprintf(file, "%s%s=%.*s\n", newLineFirst ? "\n" : "", CMS_LOCALE_KEY,
               static_cast<int>(locale.size()), locale.data());
  std::fclose(file);
}
