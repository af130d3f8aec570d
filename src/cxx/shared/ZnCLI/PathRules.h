// Pure string rules of the launcher's paths and options, kept free of I/O.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Replaces every "%b" in `path`, left to right, with `base`. Inserted text is
// never searched again, so a base holding "%b" is inserted literally.
void expandInstallDir(std::string& path, std::string_view base);

// Appends `piece` to the colon-separated `list`: an empty piece adds nothing,
// and a separator goes in only between two non-empty parts.
void joinPathPiece(std::string& list, std::string_view piece, std::string_view separator);

// Whether the first occurrence of `pattern` (".jar") in `name` ends the name.
bool isArchiveName(std::string_view name, std::string_view pattern);

// The tokens of ZN_JVM_OPTS: each starts at a "-" and runs up to the next
// space (character 32) or the end; anything else between tokens is skipped.
std::vector<std::string> jvmOptionTokens(std::string_view value);
