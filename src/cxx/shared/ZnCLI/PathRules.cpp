#include "PathRules.h"

#include "LauncherEnvironment.h"

const char pathSeparator[] = ":";

void expandInstallDir(std::string& path, std::string_view base) {
  constexpr std::string_view marker = INSTALL_DIR_MARKER;
  for (size_t at = path.find(marker); at != std::string::npos;
       at = path.find(marker, at + base.size())) {
    path.replace(at, marker.size(), base);
  }
}

void joinPathPiece(std::string& list, std::string_view piece, std::string_view separator) {
  if (piece.empty()) return;
  if (!list.empty()) list += separator;
  list += piece;
}

bool isArchiveName(std::string_view name, std::string_view pattern) {
  size_t at = name.find(pattern);
  return at != std::string_view::npos && name.size() - at == pattern.size();
}

std::vector<std::string> jvmOptionTokens(std::string_view value) {
  std::vector<std::string> tokens;
  size_t at = 0;
  while (at < value.size()) {
    if (value[at] != '-') {
      ++at;
      continue;
    }
    size_t end = value.find(' ', at);
    if (end == std::string_view::npos) end = value.size();
    tokens.emplace_back(value.substr(at, end - at));
    at = end;
  }
  return tokens;
}
