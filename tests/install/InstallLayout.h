// The install tree the install rules promise, and ways to read an actual
// tree (a staged directory, or the listing of a Debian package) for
// comparison with it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zntest {

// One file of the tree, relative to the install base, without "./" or a
// trailing "/".
struct TreeEntry {
  char type = '?';     // '-' file, 'd' directory, 'l' symbolic link
  std::string mode;    // "rwxr-xr-x"; empty in an expectation: not checked
  std::string owner;   // "root/root" in a package listing; empty elsewhere
  std::string target;  // link target
};
using Tree = std::map<std::string, TreeEntry>;

// The command names the build installs (from the build configuration).
std::vector<std::string> installedCommandNames();

// What every install holds, whatever the prefix.
Tree expectedTree();

// The entries of expectedTree() as found below `root` (lstat/readlink);
// absent entries are left out.
Tree readTree(const std::string& root);

// The entries of a `dpkg-deb --contents` listing.
Tree parsePackageListing(const std::string& listing);

// How `actual` differs from expectedTree(): one line per missing or
// different entry.
std::vector<std::string> differencesFromExpected(const Tree& actual);

// Every command link below `root` that does not resolve to the executable.
std::vector<std::string> unresolvedCommandLinks(const std::string& root);

}  // namespace zntest
