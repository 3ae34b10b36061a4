// Looks at the first bytes of a file.
#include "host/library_check.h"

#include <elf.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "host/macho_file.h"

namespace host {

std::string WhyNotLoadable(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) return path + ": no such file";
  if (!std::filesystem::is_regular_file(path, ignored)) return path + ": not a file";
  unsigned char header[sizeof(Elf32_Ehdr)] = {};
  std::ifstream file(path, std::ios::binary);
  if (!file) return path + ": cannot be read";
  file.read(reinterpret_cast<char*>(header), sizeof header);
  const auto count = static_cast<std::size_t>(file.gcount());
  if (count >= 4 && LooksLikeMacho(ByteView(header, count, "first bytes"))) return "";
  if (file.gcount() < static_cast<std::streamsize>(sizeof header) ||
      std::memcmp(header, ELFMAG, SELFMAG) != 0) {
    return path + ": not a shared library";
  }
  const int fileBits = header[EI_CLASS] == ELFCLASS64 ? 64 : 32;
  const int ownBits = sizeof(void*) * 8;
  if (fileBits != ownBits) {
    return path + ": a " + std::to_string(fileBits) + "-bit library, but this program is " +
           std::to_string(ownBits) + "-bit";
  }
  std::uint16_t type = 0;  // at the same place in both word sizes
  std::memcpy(&type, header + offsetof(Elf32_Ehdr, e_type), sizeof type);
  return type == ET_DYN ? "" : path + ": not a shared library";
}

bool IsMachoFile(const std::string& path) {
  std::uint8_t start[4] = {};
  std::ifstream file(path, std::ios::binary);
  return file.read(reinterpret_cast<char*>(start), sizeof start) &&
         LooksLikeMacho(ByteView(start, sizeof start, "first bytes"));
}

}  // namespace host
