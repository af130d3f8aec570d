#include "InstallLayout.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <sstream>

namespace zntest {

namespace {

std::string modeText(mode_t mode) {
  std::string text = "rwxrwxrwx";
  for (int bit = 0; bit < 9; ++bit) {
    if ((mode & (0400 >> bit)) == 0) text[bit] = '-';
  }
  if (mode & S_ISUID) text[2] = (mode & S_IXUSR) ? 's' : 'S';
  if (mode & S_ISGID) text[5] = (mode & S_IXGRP) ? 's' : 'S';
  return text;
}

std::string resolved(const std::string& path) {
  char buffer[PATH_MAX];
  return realpath(path.c_str(), buffer) != nullptr ? buffer : "<unresolved>";
}

}  // namespace

std::vector<std::string> installedCommandNames() {
  std::vector<std::string> names;
  std::istringstream list(ZN_INSTALLED_COMMANDS);
  for (std::string name; std::getline(list, name, ',');) names.push_back(name);
  return names;
}

Tree expectedTree() {
  Tree tree = {
      {"opt/zn/bin/znlauncher", {'-', ZN_INSTALL_SETUID ? "rwsr-xr-x" : "rwxr-xr-x", "", ""}},
      {"opt/zn/bin/znsetlocale", {'-', "rwxr-xr-x", "", ""}},
      {"opt/zn/j2re", {'l', "", "", ZN_RUNTIME_JAVA_HOME}},
      {"opt/zn/lib", {'d', "rwxr-xr-x", "", ""}},
      {"opt/zn/patch", {'d', "rwxr-xr-x", "", ""}},
      {"etc/opt/zn/config", {'d', "rwxr-xr-x", "", ""}},
      {"var/opt/zn/logs", {'d', "rwxr-xr-x", "", ""}},
      {"opt/zn/share/man/man1/znlauncher.1", {'-', "rw-r--r--", "", ""}},
      {"opt/zn/share/man/man1/znsetlocale.1", {'l', "", "", "znlauncher.1"}},
  };
  for (const std::string& name : installedCommandNames()) {
    tree["opt/zn/bin/" + name] = {'l', "", "", "znlauncher"};
    tree["opt/zn/share/man/man1/" + name + ".1"] = {'l', "", "", "znlauncher.1"};
  }
  return tree;
}

Tree readTree(const std::string& root) {
  Tree tree;
  for (const auto& [path, expected] : expectedTree()) {
    const std::string full = root + "/" + path;
    struct stat info;
    if (lstat(full.c_str(), &info) != 0) continue;
    TreeEntry& entry = tree[path];
    entry.type = S_ISDIR(info.st_mode) ? 'd' : S_ISLNK(info.st_mode) ? 'l' : '-';
    entry.mode = modeText(info.st_mode);
    if (S_ISLNK(info.st_mode)) {
      char target[PATH_MAX];
      ssize_t length = readlink(full.c_str(), target, sizeof target);
      entry.target.assign(target, length > 0 ? static_cast<size_t>(length) : 0);
    }
  }
  return tree;
}

std::vector<std::string> differencesFromExpected(const Tree& actual) {
  std::vector<std::string> differences;
  auto describe = [](const TreeEntry& entry) {
    return std::string(1, entry.type) + entry.mode + (entry.target.empty() ? "" : " -> ") +
           entry.target;
  };
  for (const auto& [path, expected] : expectedTree()) {
    auto found = actual.find(path);
    if (found == actual.end()) {
      differences.push_back(path + ": missing");
      continue;
    }
    TreeEntry compared = found->second;
    if (expected.mode.empty()) compared.mode.clear();
    if (compared.type != expected.type || compared.mode != expected.mode ||
        compared.target != expected.target) {
      differences.push_back(path + ": " + describe(compared) + ", expected " + describe(expected));
    }
  }
  return differences;
}

// Lines such as
//   lrwxrwxrwx root/root 0 2026-01-01 00:00 ./opt/zn/bin/znexec -> znlauncher
Tree parsePackageListing(const std::string& listing) {
  Tree tree;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string permissions, owner, size, date, time, path, arrow, target;
    if (!(fields >> permissions >> owner >> size >> date >> time >> path)) continue;
    fields >> arrow >> target;
    if (path.rfind("./", 0) == 0) path.erase(0, 2);
    if (!path.empty() && path.back() == '/') path.pop_back();
    tree[path] = {permissions[0], permissions.substr(1), owner, target};
  }
  return tree;
}

std::vector<std::string> unresolvedCommandLinks(const std::string& root) {
  const std::string launcher = resolved(root + "/opt/zn/bin/znlauncher");
  std::vector<std::string> unresolved;
  for (const std::string& name : installedCommandNames()) {
    const std::string link = resolved(root + "/opt/zn/bin/" + name);
    if (link != launcher || link == "<unresolved>") unresolved.push_back(name);
  }
  return unresolved;
}

}  // namespace zntest
