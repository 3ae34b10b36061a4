#include "tests/plugin/elf_symbols.h"

#include <link.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace plugin_test {

namespace {

// A structure copied out of the file; throws when it lies beyond the end.
template <typename T>
T Get(const std::string& file, std::size_t offset) {
  if (offset > file.size() || file.size() - offset < sizeof(T)) {
    throw std::runtime_error("the file ends too early");
  }
  T value;
  std::memcpy(&value, file.data() + offset, sizeof value);
  return value;
}

}  // namespace

std::vector<DynamicSymbol> ReadDynamicSymbols(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string file(std::istreambuf_iterator<char>(stream), {});
  const auto header = Get<ElfW(Ehdr)>(file, 0);
  const int ownClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ownClass) {
    throw std::runtime_error(path + " is not an object of this word size");
  }
  const auto section = [&](std::size_t index) {
    return Get<ElfW(Shdr)>(file, header.e_shoff + index * header.e_shentsize);
  };
  std::vector<DynamicSymbol> symbols;
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const ElfW(Shdr) table = section(i);
    if (table.sh_type != SHT_DYNSYM) continue;
    const ElfW(Shdr) names = section(table.sh_link);
    for (std::size_t at = sizeof(ElfW(Sym)); at < table.sh_size; at += sizeof(ElfW(Sym))) {
      const auto symbol = Get<ElfW(Sym)>(file, table.sh_offset + at);
      const std::string name = file.data() + names.sh_offset + symbol.st_name;
      symbols.push_back({name, symbol.st_shndx != SHN_UNDEF,
                         ELF32_ST_BIND(symbol.st_info) == STB_WEAK,
                         ELF32_ST_TYPE(symbol.st_info) == STT_FUNC});
    }
  }
  return symbols;
}

}  // namespace plugin_test
