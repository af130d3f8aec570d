// The mapping tables, the user's locale and the splitting of a stored locale.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TestSupport.h"
#include "ZnLocaleWriter.h"

using zntest::CapturedOutput;
using zntest::captureOutput;
using zntest::readFile;
using zntest::ScopedEnv;
using zntest::setEnv;

namespace {

// Every identifier of the table with its locale, row by row.
const char* const EXPECTED_LCIDS = R"(
  0401 ar_SA  0402 bg_BG  0403 ca_ES  0404 zh_TW  0405 cs_CZ  0406 da_DK  0407 de_DE  0408 el_GR
  040a es_ES  040b fi_FI  040c fr_FR  040d iw_IL  040e hu_HU  040f is_IS  0410 it_IT  0411 ja_JP
  0412 ko_KR  0413 nl_NL  0414 no_NO  0415 pl_PL  0416 pt_BR  0418 ro_RO  0419 ru_RU  041a hr_HR
  041b sk_SK  041c sq_AL  041d sv_SE  041e th_TH  041f tr_TR  0422 uk_UA  0423 be_BY  0424 sl_SI
  0425 et_EE  0426 lv_LV  0427 lt_LT  042f mk_MK  0439 hi_IN  0801 ar_IQ  0804 zh_CN  0807 de_CH
  0809 en_GB  080a es_MX  080c fr_BE  0810 it_CH  0812 ko_KR  0813 nl_BE  0814 no_NO_NY
  0816 pt_PT  081a sr_YU  081d sv_SE  0827 lt_LT  0c01 ar_EG  0c04 zh_HK  0c07 de_AT  0c09 en_AU
  0c0a es_ES  0c0c fr_CA  0c1a sr_YU  1001 ar_LY  1004 zh_TW  1007 de_LU  1009 en_CA  100a es_GT
  100c fr_CH  101a hr_HR  1401 ar_DZ  1404 zh_CN  1407 de_DE  1409 en_NZ  140a es_CR  140c fr_LU
  1801 ar_MA  1809 en_IE  180a es_PA  180c fr_FR  181a sr_YU  1c01 ar_TN  1c09 en_ZA  1c0a es_DO
  1c1a sr_YU  2001 ar_OM  200a es_VE  2401 ar_YE  240a es_CO  2801 ar_SY  280a es_PE  2c01 ar_JO
  2c0a es_AR  3001 ar_LB  300a es_EC  3401 ar_KW  340a es_CL  3801 ar_AE  380a es_UY  3c01 ar_BH
  3c0a es_PY  4001 ar_QA  400a es_BO  440a es_SV  480a es_HN  4c0a es_NI  500a es_PR
)";

// Every word of the table with its locale, in table order.
const char* const EXPECTED_WORDS = R"(
  C en_US  POSIX en_US  univ en_US  bokmal en_US  catalan ca_ES  croatian hr_HR  czech cs_CZ
  danish da_DK  dansk en_US  deutsch en_US  dutch nl_NL  eesti en_US  estonian et_EE
  finnish fi_FI  french fr_FR  galego en_US  galician en_US  german de_DE  greek el_GR
  hebrew iw_IL  hrvatski en_US  hungarian hu_HU  icelandic is_IS  italian it_IT  japanese ja_JP
  korean ko_KR  lithuanian lt_LT  norwegian no_NO  nynorsk no_NO_NY  polish pl_PL
  portuguese pt_PT  romanian ro_RO  russian ru_RU  slovak sk_SK  slovene en_US
  slovenian sl_SI  spanish es_ES  swedish sv_SE  thai th_TH  turkish tr_TR
)";

std::map<int, std::string> expectedLcids() {
  std::map<int, std::string> rows;
  std::istringstream in(EXPECTED_LCIDS);
  int lcid;
  std::string java;
  while (in >> std::hex >> lcid >> java) rows.emplace(lcid, java);
  return rows;
}

std::vector<std::pair<std::string, std::string>> expectedWords() {
  std::vector<std::pair<std::string, std::string>> rows;
  std::istringstream in(EXPECTED_WORDS);
  std::string word, java;
  while (in >> word >> java) rows.emplace_back(word, java);
  return rows;
}

TEST(LcidToJava, EveryTableRow) {
  auto rows = expectedLcids();
  ASSERT_EQ(rows.size(), 102u);
  for (const auto& [lcid, java] : rows) EXPECT_EQ(ZnLocaleWriter::lcidToJava(lcid), java) << lcid;
}

TEST(LcidToJava, EverythingElseIsTheDefaultPointer) {
  auto rows = expectedLcids();
  for (int lcid : {INT_MIN, -1, 0x0409, 0x0429, 0x0436, 0x141a, 0x2409, INT_MAX}) {
    EXPECT_EQ(ZnLocaleWriter::lcidToJava(lcid), DLOCALE) << lcid;
  }
  for (int lcid = -0x100; lcid <= 0x6000; ++lcid) {
    if (!rows.count(lcid)) {
      ASSERT_EQ(ZnLocaleWriter::lcidToJava(lcid), DLOCALE) << lcid;
    }
  }
  EXPECT_STREQ(DLOCALE, "en_US");
}

TEST(LangToJava, EveryTableRowWithAndWithoutCodeSet) {
  auto rows = expectedWords();
  ASSERT_EQ(rows.size(), 40u);
  for (const auto& [word, java] : rows) {
    for (const std::string& value : {word, word + ".ISO-8859-1", ".." + word + ".UTF-8.x"}) {
      const char* result = ZnLocaleWriter::langToJava(value.c_str());
      EXPECT_EQ(result, java) << value;
      if (java == "en_US") {
        EXPECT_EQ(result, DLOCALE) << value;
      }
    }
  }
}

TEST(LangToJava, UnknownValuesPassThroughUntouched) {
  const std::pair<const char*, const char*> cases[] = {
      {"German", "German"},   {"swahili.UTF-8", "swahili"},
      {"GERMAN.x", "GERMAN"}, {"german ", "german "},
      {"...x..y", "x"},       {"posix", "posix"},
      {"", "en_US"},          {"...", "en_US"},
      {nullptr, "en_US"},
  };
  for (const auto& [value, expected] : cases) {
    std::string before = value ? value : "";
    EXPECT_STREQ(ZnLocaleWriter::langToJava(value), expected) << before;
    if (value) {
      EXPECT_EQ(before, value);
    }
  }
  EXPECT_EQ(ZnLocaleWriter::langToJava("x.y"), ZnLocaleWriter::langToJava("x.z"));
}

TEST(DecomposeLocale, SplitsIntoBoundedParts) {
  struct Case {
    const char* locale;
    const char* language;
    const char* country;
  };
  const Case cases[] = {
      {"de_DE", "de", "DE"},
      {"de", "de", "US"},
      {"_DE", "DE", "US"},
      {"de_DE_EURO", "de", "DE"},
      {"de__DE", "de", "DE"},
      {"de_DE\n", "de", "DE\n"},
      {"", "en", "US"},
      {"___", "en", "US"},
      {nullptr, "en", "US"},
      {"abcdefghijklmnopqrstu_ABCDEFGHIJKLMNOPQ", "abcdefghijklmno", "ABCDEFGHIJKLMNO"},
      {"abcdefghijklmno_ABCDEFGHIJKLMNO", "abcdefghijklmno", "ABCDEFGHIJKLMNO"},
  };
  for (const Case& c : cases) {
    struct {
      char part[ZnLocaleWriter::LOCALE_PART_SIZE];
      char guard[8];
    } language, country;
    std::memset(&language, '#', sizeof language);
    std::memset(&country, '#', sizeof country);
    ZnLocaleWriter::decomposeLocale(c.locale, language.part, country.part);
    EXPECT_STREQ(language.part, c.language) << (c.locale ? c.locale : "(null)");
    EXPECT_STREQ(country.part, c.country) << (c.locale ? c.locale : "(null)");
    EXPECT_EQ(std::string(language.guard, 8) + std::string(country.guard, 8), std::string(16, '#'));
  }
}

TEST(GetUserLocale, FollowsLcAllOnly) {
  const std::pair<const char*, const char*> cases[] = {
      {nullptr, "en_US"},
      {"de_DE.UTF-8", "de_DE"},
      {"pt_BR.ISO8859-1", "pt_BR"},
      {"a_b", "a_b"},
      {"_", "_"},
      {"POSIX", "en_US"},
      {"C", "en_US"},
      {"german", "de_DE"},
      {"fr_CA.UTF-8", "fr_CA"},
      {"", "en_US"},
      {"swahili.UTF-8", "swahili"},
      {"...", "en_US"},
  };
  ScopedEnv lang("LANG", "de_DE.UTF-8");
  ScopedEnv lcAll("LC_ALL", nullptr);
  for (const auto& [value, expected] : cases) {
    setEnv("LC_ALL", value);
    EXPECT_STREQ(ZnLocaleWriter::getUserLocale(), expected) << (value ? value : "(unset)");
    if (value) {
      EXPECT_STREQ(std::getenv("LC_ALL"), value);
    }
  }
}

}  // namespace
