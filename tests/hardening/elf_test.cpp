// The release hardening of the built programs, read from their ELF headers.
#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>

#include "TestSupport.h"

namespace zntest {
namespace {

struct ElfFacts {
  uint16_t type = ET_NONE;
  bool interpreter = false;  // PT_INTERP: a program, not a shared library
  bool relro = false;        // PT_GNU_RELRO
  bool executableStack = true;
  bool bindNow = false;  // DT_BIND_NOW, DF_BIND_NOW or DF_1_NOW
  bool pieFlag = false;  // DF_1_PIE
  std::set<std::string> imports;
};

class ElfImage {
 public:
  explicit ElfImage(const std::string& path) : myBytes(readFile(path)) {
    if (myBytes.size() < EI_NIDENT || std::memcmp(myBytes.data(), ELFMAG, SELFMAG) != 0 ||
        myBytes[EI_CLASS] != ELFCLASS64) {
      throw std::runtime_error(path + ": not a 64-bit ELF file");
    }
  }

  // Reads the structure at `offset`, checked against the file's size.
  template <typename T>
  void read(uint64_t offset, T& value) const {
    if (offset > myBytes.size() || myBytes.size() - offset < sizeof(T)) {
      throw std::runtime_error("ELF structure beyond the end of the file");
    }
    std::memcpy(&value, myBytes.data() + offset, sizeof(T));
  }

  std::string stringAt(uint64_t offset) const {
    if (offset >= myBytes.size()) throw std::runtime_error("ELF string beyond the end");
    return std::string(myBytes.c_str() + offset,
                       strnlen(myBytes.c_str() + offset, myBytes.size() - offset));
  }

 private:
  std::string myBytes;
};

ElfFacts readElf(const std::string& path) {
  ElfImage image(path);
  ElfFacts facts;
  Elf64_Ehdr header;
  image.read(0, header);
  facts.type = header.e_type;
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    Elf64_Phdr segment;
    image.read(header.e_phoff + uint64_t{i} * header.e_phentsize, segment);
    if (segment.p_type == PT_INTERP) facts.interpreter = true;
    if (segment.p_type == PT_GNU_RELRO) facts.relro = true;
    if (segment.p_type == PT_GNU_STACK) facts.executableStack = (segment.p_flags & PF_X) != 0;
    if (segment.p_type != PT_DYNAMIC) continue;
    for (uint64_t off = segment.p_offset; off < segment.p_offset + segment.p_filesz;
         off += sizeof(Elf64_Dyn)) {
      Elf64_Dyn entry;
      image.read(off, entry);
      if (entry.d_tag == DT_NULL) break;
      if (entry.d_tag == DT_BIND_NOW) facts.bindNow = true;
      if (entry.d_tag == DT_FLAGS && (entry.d_un.d_val & DF_BIND_NOW) != 0) facts.bindNow = true;
      if (entry.d_tag == DT_FLAGS_1) {
        if ((entry.d_un.d_val & DF_1_NOW) != 0) facts.bindNow = true;
        if ((entry.d_un.d_val & DF_1_PIE) != 0) facts.pieFlag = true;
      }
    }
  }
  // Imported functions: the undefined symbols of the dynamic symbol table.
  for (unsigned i = 0; i < header.e_shnum; ++i) {
    Elf64_Shdr section;
    image.read(header.e_shoff + uint64_t{i} * header.e_shentsize, section);
    if (section.sh_type != SHT_DYNSYM || section.sh_entsize == 0) continue;
    Elf64_Shdr strings;
    image.read(header.e_shoff + uint64_t{section.sh_link} * header.e_shentsize, strings);
    for (uint64_t n = 0; n < section.sh_size / section.sh_entsize; ++n) {
      Elf64_Sym symbol;
      image.read(section.sh_offset + n * section.sh_entsize, symbol);
      if (symbol.st_shndx == SHN_UNDEF && symbol.st_name != 0) {
        facts.imports.insert(image.stringAt(strings.sh_offset + symbol.st_name));
      }
    }
  }
  return facts;
}

// _FORTIFY_SOURCE turns calls such as fprintf into their checked "_chk"
// variants.
bool importsFortified(const ElfFacts& facts) {
  return std::any_of(facts.imports.begin(), facts.imports.end(), [](const std::string& name) {
    return name != "__stack_chk_fail" && name.size() > 4 && name.rfind("_chk") == name.size() - 4;
  });
}

struct Program {
  const char* name;
  const char* path;
};

const Program PROGRAMS[] = {
    {"znlauncher", ZN_LAUNCHER_PATH},
    {"znlauncher_hardened", ZN_HARDENED_LAUNCHER_PATH},
    {"znsetlocale", ZNSETLOCALE_PATH},
};

TEST(ElfHardening, EveryProgramIsBuiltWithTheReleaseProtections) {
  for (const Program& program : PROGRAMS) {
    SCOPED_TRACE(program.name);
    const ElfFacts facts = readElf(program.path);
    EXPECT_EQ(facts.type, ET_DYN) << "position-independent executable";
    EXPECT_TRUE(facts.interpreter) << "a program, not a library";
    EXPECT_TRUE(facts.pieFlag) << "DF_1_PIE";
    EXPECT_TRUE(facts.relro) << "PT_GNU_RELRO";
    EXPECT_TRUE(facts.bindNow) << "immediate binding";
    EXPECT_FALSE(facts.executableStack);
    EXPECT_EQ(facts.imports.count("__stack_chk_fail"), 1u) << "stack protector";
    EXPECT_EQ(importsFortified(facts), ZN_EXPECT_FORTIFY == 1) << "_FORTIFY_SOURCE";
  }
}

// The hardened code is in the hardened launcher only, unless the build
// makes znlauncher itself the hardened one.
TEST(ElfHardening, OnlyTheHardenedLauncherCarriesTheGuard) {
  const std::string marker = "-XX:+DisableAttachMechanism";
  EXPECT_NE(readFile(ZN_HARDENED_LAUNCHER_PATH).find(marker), std::string::npos);
  EXPECT_EQ(readFile(ZN_LAUNCHER_PATH).find(marker) != std::string::npos,
            ZN_DEFAULT_IS_HARDENED == 1);
}

}  // namespace
}  // namespace zntest
