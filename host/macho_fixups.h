// The instructions of a Mach-O library that say which of its words hold addresses: its own, which
// move with it (rebase), and other libraries' (bind).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "host/macho_file.h"

namespace host {

enum class FixupKind : std::uint8_t {
  kPointer = 1,   // a word that is an address
  kAbsolute = 2,  // the same, within an instruction
  kRelative = 3,  // a word that is a distance from the word's end to an address
};

struct MachoBind {
  std::string symbol;       // as in the file, mostly with a leading underscore
  int library = 0;          // from 1; 0 the file itself, below 0 any
  bool weakImport = false;  // may be missing: the address is 0 then
  FixupKind kind = FixupKind::kPointer;
  std::uint32_t address = 0;  // the word's; four bytes that the file holds for a segment
  std::int64_t addend = 0;
};

// Which instructions of the three kinds of binds are meant.
enum class BindList {
  kAtOnce,
  kWeak,  // of symbols that several libraries may define; they say no library
  kLazy,  // that may wait until they are used; each is followed by an end
};

// Run the instructions of a file. Throw FileFault for an instruction that is unknown, names no word
// that the file holds for a segment, or asks for more words than there are.
void ForEachRebase(const MachoFile& file,
                   const std::function<void(FixupKind, std::uint32_t address)>& take);
void ForEachBind(const MachoFile& file, BindList list,
                 const std::function<void(const MachoBind&)>& take);

}  // namespace host
