// The CMSLocale entry against real files: temporary ones, and as root the real settings file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "ZnLocaleWriter.h"

namespace fs = std::filesystem;

using zntest::CapturedOutput;
using zntest::captureOutput;
using zntest::readFile;
using zntest::ScopedEnv;
using zntest::setEnv;

namespace {

const std::string NOTE = "Note: CMSLocale not set. Existing CMSLocale is ";

std::string unableToOpen(const std::string& path) {
  return "Unable to open config file " + path + ".\n";
}

void writeWhole(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

class LocaleWriterFile : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/znlocale-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    myDir = pattern;
    myPath = myDir + "/globalsettings.props";
  }
  void TearDown() override { fs::remove_all(myDir); }

  CapturedOutput write(const std::string& path) {
    return captureOutput([&] { ZnLocaleWriter::writeCMSLocale(path.c_str()); });
  }

  std::string myDir, myPath;
  ScopedEnv myLcAll{"LC_ALL", nullptr};
};

TEST_F(LocaleWriterFile, MissingFileIsReportedAndCreatedInOneCall) {
  CapturedOutput first = write(myPath);
  EXPECT_EQ(first.err, unableToOpen(myPath));
  EXPECT_EQ(first.out, "");
  EXPECT_EQ(readFile(myPath), "CMSLocale=en_US\n");

  setEnv("LC_ALL", "german");
  CapturedOutput second = write(myPath);
  EXPECT_EQ(second.err, "");
  EXPECT_EQ(second.out, NOTE + "en_US\n\n");
  EXPECT_EQ(readFile(myPath), "CMSLocale=en_US\n");

  char language[16], country[16];
  EXPECT_EQ(ZnLocaleWriter::readCMSLocale(myPath.c_str(), language, country), 1);
  EXPECT_STREQ(language, "en");
  EXPECT_STREQ(country, "US\n");
}

TEST_F(LocaleWriterFile, ExistingFiles) {
  struct Case {
    const char* name;
    std::string before;
    const char* lcAll;
    std::string out;    // empty: the entry is appended
    std::string added;  // what the append adds
  };
  const std::string x63(63, 'x'), huge(1 << 20, 'x');
  const Case cases[] = {
      {"present", "a=b\nCMSLocale=de_DE\nc=d\n", "german", NOTE + "de_DE\n\n", ""},
      {"present at the end", "a=b\nCMSLocale=pt_BR", nullptr, NOTE + "pt_BR\n", ""},
      {"empty value", "CMSLocale=\n", "german", NOTE + "\n_US\n", ""},
      {"empty value at the end", "a=b\nCMSLocale=", "german", NOTE + "en_US\n", ""},
      {"second piece", x63 + "CMSLocale=fr_CA\n", nullptr, NOTE + "fr_CA\n\n", ""},
      {"leading =", "=CMSLocale==it_IT\n", nullptr, NOTE + "it_IT\n\n", ""},
      {"overlong value", "CMSLocale=" + std::string(80, 'a') + "\n", "C",
       NOTE + "aaaaaaaaaaaaaaa_US\n", ""},
      {"value after NUL", std::string("CMSLocale=\0de_DE\n", 17), "C", NOTE + "en_US\n", ""},
      {"unset", "a=b\n", nullptr, "", "CMSLocale=en_US\n"},
      {"POSIX", "", "POSIX", "", "CMSLocale=en_US\n"},
      {"german", "a=b\n", "german", "", "CMSLocale=de_DE\n"},
      {"fr_CA.UTF-8", "a=b\n", "fr_CA.UTF-8", "", "CMSLocale=fr_CA\n"},
      {"swahili.UTF-8", "a=b\n", "swahili.UTF-8", "", "CMSLocale=swahili\n"},
      {"empty LC_ALL", "a=b\n", "", "", "CMSLocale=en_US\n"},
      {"dots LC_ALL", "a=b\n", "..", "", "CMSLocale=en_US\n"},
      {"line end in LC_ALL", "a=b\n", "x_\nEvil=1", "", "CMSLocale=x_\n"},
      {"no final line end", "a=b", "german", "", "\nCMSLocale=de_DE\n"},
      {"key across pieces", std::string(60, 'x') + "CMSLocale=fr_CA\n", nullptr, "",
       "CMSLocale=en_US\n"},
      {"blank before =", "CMSLocale =x\n", nullptr, "", "CMSLocale=en_US\n"},
      {"other case", "cmslocale=x\n", nullptr, "", "CMSLocale=en_US\n"},
      {"no = at all", "just text\nmore text\n", "german", "", "CMSLocale=de_DE\n"},
      {"key after NUL", std::string("bin\0CMSLocale=de_DE\n", 20), "C", "", "CMSLocale=en_US\n"},
      {"binary bytes", "\x01\xff\xfe=\x80\n\r\n", "german", "", "CMSLocale=de_DE\n"},
      {"huge line", huge, "german", "", "\nCMSLocale=de_DE\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    writeWhole(myPath, c.before);
    setEnv("LC_ALL", c.lcAll);
    CapturedOutput got = write(myPath);
    EXPECT_EQ(got.err, "");
    EXPECT_EQ(got.out, c.out);
    EXPECT_TRUE(readFile(myPath) == c.before + c.added);
  }
}

TEST_F(LocaleWriterFile, UnusablePathsAreReportedAndLeftAlone) {
  const std::string missingDir = myDir + "/none/globalsettings.props";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {myDir, unableToOpen(myDir) + unableToOpen(myDir)},
      {missingDir, unableToOpen(missingDir) + unableToOpen(missingDir)},
  };
  for (const auto& [path, err] : cases) {
    CapturedOutput got = write(path);
    EXPECT_EQ(got.out, "");
    EXPECT_EQ(got.err, err);
  }
  EXPECT_TRUE(fs::is_empty(myDir));
}

// Brings the real settings file into a known state and puts back what was there before:
// a file that existed is moved aside and back; directories it had to create are removed.
class RealSettingsFile : public ::testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to write " << GLOBAL_SETTINGS_FILE;
    for (fs::path dir = fs::path(GLOBAL_SETTINGS_FILE).parent_path(); !fs::exists(dir);
         dir = dir.parent_path()) {
      myCreated.insert(myCreated.begin(), dir);
    }
    for (const fs::path& dir : myCreated) ASSERT_EQ(mkdir(dir.c_str(), 0755), 0) << dir;
    mySaved = fs::exists(fs::symlink_status(GLOBAL_SETTINGS_FILE));
    if (mySaved) fs::rename(GLOBAL_SETTINGS_FILE, std::string(GLOBAL_SETTINGS_FILE) + SAVED);
  }
  void TearDown() override {
    if (geteuid() != 0) return;
    fs::remove(GLOBAL_SETTINGS_FILE);
    if (mySaved) fs::rename(std::string(GLOBAL_SETTINGS_FILE) + SAVED, GLOBAL_SETTINGS_FILE);
    std::error_code ignored;  // a directory someone else has filled meanwhile stays
    for (auto dir = myCreated.rbegin(); dir != myCreated.rend(); ++dir) fs::remove(*dir, ignored);
  }

  static constexpr const char* SAVED = ".saved-by-test";
  std::vector<fs::path> myCreated;
  bool mySaved = false;
  ScopedEnv myLcAll{"LC_ALL", "german"};
};

TEST_F(RealSettingsFile, WriteCreatesThenKeepsTheEntry) {
  CapturedOutput first = captureOutput([] { ZnLocaleWriter::writeCMSLocale(); });
  EXPECT_EQ(first.err, unableToOpen(GLOBAL_SETTINGS_FILE));
  EXPECT_EQ(readFile(GLOBAL_SETTINGS_FILE), "CMSLocale=de_DE\n");

  setEnv("LC_ALL", "fr_CA.UTF-8");
  CapturedOutput second = captureOutput([] { ZnLocaleWriter::writeCMSLocale(); });
  EXPECT_EQ(second.out, NOTE + "de_DE\n\n");
  EXPECT_EQ(readFile(GLOBAL_SETTINGS_FILE), "CMSLocale=de_DE\n");

  char language[16], country[16];
  EXPECT_EQ(ZnLocaleWriter::readCMSLocale(language, country), 1);
  EXPECT_STREQ(language, "de");
}

TEST_F(RealSettingsFile, ToolAddsTheEntryAndSucceeds) {
  writeWhole(GLOBAL_SETTINGS_FILE, "a=b");
  setEnv("LC_ALL", "fr_CA.UTF-8");
  int status = std::system(ZNSETLOCALE_PATH " >/dev/null 2>&1");
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readFile(GLOBAL_SETTINGS_FILE), "a=b\nCMSLocale=fr_CA\n");
}

}  // namespace
