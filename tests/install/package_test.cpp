// The Debian package built by CPack from the install rules: its control
// fields, its listing (types, modes, owners, link targets, nothing else) and
// its contents unpacked into a temporary root.
#include <gtest/gtest.h>

#include "InstallLayout.h"
#include "TestSupport.h"

namespace zntest {
namespace {

ProcessResult dpkgDeb(const std::vector<std::string>& args) {
  ProcessOptions options;
  options.args = args;
  options.env = {{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"}};
  return runProcess(ZN_DPKG_DEB, options);
}

// The package is built once per test run by the fixture test
// install.build_package (see CMakeLists.txt) into ZN_PACKAGE_DIR.
class PackageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const std::string& name : directoryOrder(ZN_PACKAGE_DIR)) {
      if (name.size() > 4 && name.compare(name.size() - 4, 4, ".deb") == 0) {
        deb = std::string(ZN_PACKAGE_DIR) + "/" + name;
      }
    }
    ASSERT_FALSE(deb.empty()) << "no package in " << ZN_PACKAGE_DIR;
  }
  std::string deb;
};

TEST_F(PackageTest, DependsOnTheJavaRuntime) {
  ProcessResult depends = dpkgDeb({"--field", deb, "Depends"});
  ASSERT_EQ(depends.exitStatus, 0) << depends.err;
  EXPECT_NE(depends.out.find(ZN_PACKAGE_JAVA_DEPENDS), std::string::npos) << depends.out;
  EXPECT_EQ(dpkgDeb({"--info", deb, "postrm"}).exitStatus, 0) << "no purge script";
}

TEST_F(PackageTest, ListingHoldsTheTreeOwnedByRoot) {
  ProcessResult listing = dpkgDeb({"--contents", deb});
  ASSERT_EQ(listing.exitStatus, 0) << listing.err;
  const Tree actual = parsePackageListing(listing.out);
  EXPECT_EQ(differencesFromExpected(actual), std::vector<std::string>{});
  const Tree expected = expectedTree();
  for (const auto& [path, entry] : actual) {
    SCOPED_TRACE(path);
    EXPECT_EQ(entry.owner, "root/root");
    // Directories on the way to the tree are expected; any other file is not.
    EXPECT_TRUE(entry.type == 'd' || expected.count(path) == 1) << "unexpected file";
  }
}

TEST_F(PackageTest, UnpackedLinksResolveToTheLauncher) {
  TempDir root("znunpacked");
  ProcessResult unpacked = dpkgDeb({"--extract", deb, root.path()});
  ASSERT_EQ(unpacked.exitStatus, 0) << unpacked.err;
  EXPECT_EQ(unresolvedCommandLinks(root.path()), std::vector<std::string>{});
  EXPECT_NE(readFile(root.path() + "/opt/zn/share/man/man1/znexec.1").find(".TH ZNLAUNCHER 1"),
            std::string::npos);
}

}  // namespace
}  // namespace zntest
