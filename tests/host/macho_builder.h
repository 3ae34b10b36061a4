// Makes macOS libraries for 32-bit Intel byte by byte, without any toolchain.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace macho_test {

// Bytes that grow, little endian.
class Bytes : public std::vector<std::uint8_t> {
 public:
  using std::vector<std::uint8_t>::vector;
  Bytes& Byte(unsigned value);
  Bytes& Word(std::uint32_t value);
  Bytes& Uleb(std::uint64_t value);
  Bytes& Sleb(std::int64_t value);
  Bytes& Text(const std::string& text);  // with its end
  Bytes& Name(const std::string& text);  // in 16 bytes
  Bytes& Add(const std::vector<std::uint8_t>& bytes);
  void SetWord(std::size_t offset, std::uint32_t value);
  std::uint32_t WordAt(std::size_t offset) const;
};

// Addresses that the libraries are linked for: one page each. File offsets are the same without
// kLinked.
inline constexpr std::uint32_t kLinked = 0x40000;
inline constexpr std::uint32_t kCode = kLinked + 0x800;       // in the first segment, "__TEXT"
inline constexpr std::uint32_t kFrames = kLinked + 0xC00;     // there too
inline constexpr std::uint32_t kData = kLinked + 0x1000;      // the second segment, "__DATA"
inline constexpr std::uint32_t kStarters = kLinked + 0x1C00;  // there too: initialisers
inline constexpr std::uint32_t kEnders = kLinked + 0x1E00;    // and terminators
inline constexpr std::uint32_t kTables = kLinked + 0x2000;    // the third, "__LINKEDIT"

struct Library {
  std::uint32_t magic = 0xFEEDFACE, processor = 7, kind = 6;
  Bytes code, frames;      // at kCode and kFrames
  Bytes data;              // at kData
  Bytes starters, enders;  // words with addresses
  std::uint32_t dataProtection = 3, dataFlags = 0;
  std::vector<std::string> libraries = {"/usr/lib/libSystem.B.dylib"};
  Bytes rebase, bind, weakBind, lazyBind, exports;
  Bytes moreCommands;
  unsigned moreCommandsCount = 0;

  // Offsets of load commands within the file, in this order.
  enum Command { kTextSegment, kDataSegment, kTablesSegment, kLoaderInfo, kSymbolTable, kOwnName };
  // The file; where each of these commands starts goes to `commands` if it is given.
  Bytes Build(std::vector<std::size_t>* commands = nullptr) const;
};

// An export tree with one node for each name.
struct Export {
  std::string name;
  std::uint32_t address;  // linked
  unsigned flags = 0;
};
Bytes ExportTree(const std::vector<Export>& exports);

// Instructions for words at linked addresses in the first three segments.
struct Pointer {
  std::uint32_t address;
  unsigned kind = 1;  // 1 a word, 2 the same within an instruction, 3 a distance there
};
Bytes Rebases(const std::vector<Pointer>& pointers);
struct Import {
  std::string symbol;
  std::uint32_t address;
  int library = 1;  // 0 the file itself, -2 any
  unsigned kind = 1;
  std::int64_t addend = 0;
  bool weak = false;  // may be missing
};
Bytes Binds(const std::vector<Import>& imports);

}  // namespace macho_test
