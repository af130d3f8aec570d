// Locale settings: maps platform locale identifiers to Java locale names and records the
// user's locale as the CMSLocale entry of the global settings file.
#pragma once

#include <cstddef>

// The default Java locale, "en_US". The lookups return this very pointer for the default.
extern const char* const DLOCALE;
// "/etc/opt/zn/config/globalsettings.props": absolute, never moved under an install base.
extern const char* const GLOBAL_SETTINGS_FILE;
// "CMSLocale", the key of the entry this class reads and adds.
extern const char* const CMS_LOCALE_KEY;

class ZnLocaleWriter {
 public:
  // Size of the language and country buffers: at most 15 characters and the NUL.
  static constexpr std::size_t LOCALE_PART_SIZE = 16;

  ZnLocaleWriter() = delete;

  // The Java locale for a Windows locale identifier; DLOCALE for any identifier not in the
  // table. Never null.
  static const char* lcidToJava(int lcid);

  // The Java locale for the value of a locale variable without a country part ("C",
  // "german.ISO-8859-1"): the value's first "."-separated piece is looked up case-sensitively;
  // an unknown piece is returned itself. The value is never modified: an unknown piece is
  // returned as a copy that lives until the process ends. A value without a first piece
  // (null, empty or only ".") gives DLOCALE.
  static const char* langToJava(const char* value);

  // The user's locale from LC_ALL alone: DLOCALE when unset, the first five characters when
  // the value contains "_" (a copy that lives until the process ends), otherwise
  // langToJava(value). So an empty or all-"." LC_ALL gives DLOCALE. The environment is never
  // modified.
  static const char* getUserLocale();

  // Splits a locale name at "_" (leading "_" skipped) into language and country, each a
  // buffer of LOCALE_PART_SIZE bytes. A missing first piece gives "en" and "US", a missing
  // second piece gives country "US". A piece longer than 15 characters is cut to its first
  // 15, so a stored entry with an overlong value still counts as present and is never added
  // a second time.
  static void decomposeLocale(const char* locale, char* language, char* country);

  // Reads the settings file in pieces of at most 63 bytes, each examined as a line, for a
  // piece whose first "="-token is exactly "CMSLocale"; its next token (line end included)
  // goes through decomposeLocale. Returns 1 when found, else 0 with "en" and "US". A file
  // that cannot be opened or read is reported on standard error and counts as not found.
  static int readCMSLocale(char* language, char* country);
  static int readCMSLocale(const char* path, char* language, char* country);

  // Adds "CMSLocale=<getUserLocale()>" at the end of the settings file unless the key is
  // already there, in which case a note goes to standard output and the file is untouched.
  // If the file does not end with a line end, one is written first, so the last line keeps
  // its value; the locale is cut at any line end it carries, so the entry stays one line.
  static void writeCMSLocale();
  static void writeCMSLocale(const char* path);

 private:
  // A copy of the first `length` characters of `text` that lives until the process ends.
  static const char* keep(const char* text, std::size_t length);
};
