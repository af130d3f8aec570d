// The two locale mapping tables and their lookups. No I/O; the only state is the kept copies.
#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "ZnLocaleWriter.h"

const char* const DLOCALE = "en_US";

namespace {

struct LcidEntry {
  int lcid;
  const char* java;
};

struct WordEntry {
  const char* value;
  const char* java;
};

// Windows locale identifiers with a locale other than the default.
// clang-format off
const LcidEntry LCID_TABLE[] = {
    {0x0401, "ar_SA"}, {0x0402, "bg_BG"}, {0x0403, "ca_ES"},
    {0x0404, "zh_TW"}, {0x0405, "cs_CZ"}, {0x0406, "da_DK"},
    {0x0407, "de_DE"}, {0x0408, "el_GR"}, {0x040a, "es_ES"},
    {0x040b, "fi_FI"}, {0x040c, "fr_FR"}, {0x040d, "iw_IL"},
    {0x040e, "hu_HU"}, {0x040f, "is_IS"}, {0x0410, "it_IT"},
    {0x0411, "ja_JP"}, {0x0412, "ko_KR"}, {0x0413, "nl_NL"},
    {0x0414, "no_NO"}, {0x0415, "pl_PL"}, {0x0416, "pt_BR"},
    {0x0418, "ro_RO"}, {0x0419, "ru_RU"}, {0x041a, "hr_HR"},
    {0x041b, "sk_SK"}, {0x041c, "sq_AL"}, {0x041d, "sv_SE"},
    {0x041e, "th_TH"}, {0x041f, "tr_TR"}, {0x0422, "uk_UA"},
    {0x0423, "be_BY"}, {0x0424, "sl_SI"}, {0x0425, "et_EE"},
    {0x0426, "lv_LV"}, {0x0427, "lt_LT"}, {0x042f, "mk_MK"},
    {0x0439, "hi_IN"}, {0x0801, "ar_IQ"}, {0x0804, "zh_CN"},
    {0x0807, "de_CH"}, {0x0809, "en_GB"}, {0x080a, "es_MX"},
    {0x080c, "fr_BE"}, {0x0810, "it_CH"}, {0x0812, "ko_KR"},
    {0x0813, "nl_BE"}, {0x0814, "no_NO_NY"}, {0x0816, "pt_PT"},
    {0x081a, "sr_YU"}, {0x081d, "sv_SE"}, {0x0827, "lt_LT"},
    {0x0c01, "ar_EG"}, {0x0c04, "zh_HK"}, {0x0c07, "de_AT"},
    {0x0c09, "en_AU"}, {0x0c0a, "es_ES"}, {0x0c0c, "fr_CA"},
    {0x0c1a, "sr_YU"}, {0x1001, "ar_LY"}, {0x1004, "zh_TW"},
    {0x1007, "de_LU"}, {0x1009, "en_CA"}, {0x100a, "es_GT"},
    {0x100c, "fr_CH"}, {0x101a, "hr_HR"}, {0x1401, "ar_DZ"},
    {0x1404, "zh_CN"}, {0x1407, "de_DE"}, {0x1409, "en_NZ"},
    {0x140a, "es_CR"}, {0x140c, "fr_LU"}, {0x1801, "ar_MA"},
    {0x1809, "en_IE"}, {0x180a, "es_PA"}, {0x180c, "fr_FR"},
    {0x181a, "sr_YU"}, {0x1c01, "ar_TN"}, {0x1c09, "en_ZA"},
    {0x1c0a, "es_DO"}, {0x1c1a, "sr_YU"}, {0x2001, "ar_OM"},
    {0x200a, "es_VE"}, {0x2401, "ar_YE"}, {0x240a, "es_CO"},
    {0x2801, "ar_SY"}, {0x280a, "es_PE"}, {0x2c01, "ar_JO"},
    {0x2c0a, "es_AR"}, {0x3001, "ar_LB"}, {0x300a, "es_EC"},
    {0x3401, "ar_KW"}, {0x340a, "es_CL"}, {0x3801, "ar_AE"},
    {0x380a, "es_UY"}, {0x3c01, "ar_BH"}, {0x3c0a, "es_PY"},
    {0x4001, "ar_QA"}, {0x400a, "es_BO"}, {0x440a, "es_SV"},
    {0x480a, "es_HN"}, {0x4c0a, "es_NI"}, {0x500a, "es_PR"},
};

// Locale-variable values without a country part, matched in this order.
const WordEntry WORD_TABLE[] = {
    {"C",          DLOCALE},    {"POSIX",      DLOCALE},
    {"univ",       DLOCALE},    {"bokmal",     DLOCALE},
    {"catalan",    "ca_ES"},    {"croatian",   "hr_HR"},
    {"czech",      "cs_CZ"},    {"danish",     "da_DK"},
    {"dansk",      DLOCALE},    {"deutsch",    DLOCALE},
    {"dutch",      "nl_NL"},    {"eesti",      DLOCALE},
    {"estonian",   "et_EE"},    {"finnish",    "fi_FI"},
    {"french",     "fr_FR"},    {"galego",     DLOCALE},
    {"galician",   DLOCALE},    {"german",     "de_DE"},
    {"greek",      "el_GR"},    {"hebrew",     "iw_IL"},
    {"hrvatski",   DLOCALE},    {"hungarian",  "hu_HU"},
    {"icelandic",  "is_IS"},    {"italian",    "it_IT"},
    {"japanese",   "ja_JP"},    {"korean",     "ko_KR"},
    {"lithuanian", "lt_LT"},    {"norwegian",  "no_NO"},
    {"nynorsk",    "no_NO_NY"}, {"polish",     "pl_PL"},
    {"portuguese", "pt_PT"},    {"romanian",   "ro_RO"},
    {"russian",    "ru_RU"},    {"slovak",     "sk_SK"},
    {"slovene",    DLOCALE},    {"slovenian",  "sl_SI"},
    {"spanish",    "es_ES"},    {"swedish",    "sv_SE"},
    {"thai",       "th_TH"},    {"turkish",    "tr_TR"},
};
// clang-format on

static_assert(std::size(LCID_TABLE) == 102);
static_assert(std::size(WORD_TABLE) == 40);

}  // namespace

const char* ZnLocaleWriter::lcidToJava(int lcid) {
  auto found = std::find_if(std::begin(LCID_TABLE), std::end(LCID_TABLE),
                            [lcid](const LcidEntry& entry) { return entry.lcid == lcid; });
  return found == std::end(LCID_TABLE) ? DLOCALE : found->java;
}

const char* ZnLocaleWriter::langToJava(const char* value) {
  std::string_view rest = value ? value : "";
  std::size_t start = rest.find_first_not_of('.');
  if (start == std::string_view::npos) return DLOCALE;
  std::string_view piece = rest.substr(start, rest.find('.', start) - start);

  auto found = std::find_if(std::begin(WORD_TABLE), std::end(WORD_TABLE),
                            [piece](const WordEntry& entry) { return piece == entry.value; });
  return found == std::end(WORD_TABLE) ? keep(piece.data(), piece.size()) : found->java;
}

const char* ZnLocaleWriter::keep(const char* text, std::size_t length) {
  // A set keeps one stable copy of each text, however often it is asked for.
  static std::set<std::string, std::less<>> kept;
  return kept.emplace(text, length).first->c_str();
}
