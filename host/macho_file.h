// A macOS library for 32-bit Intel processors (Mach-O), taken apart and checked. Nothing is mapped.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/byte_view.h"

namespace host {

// Whether these first bytes of a file (at least four) are those of a Mach-O or universal file.
bool LooksLikeMacho(ByteView start);

// Addresses are those that the file was linked for.
struct MachoSegment {
  std::string name;
  std::uint32_t address = 0;  // at the start of a page
  std::uint32_t size = 0;     // bytes in memory
  ByteView content;           // at its start; the rest is zero
  std::uint32_t fileOffset = 0;
  std::uint32_t protection = 0;  // macho::kReadable…, once everything is in place
};

struct MachoSection {
  std::string name;
  std::uint8_t type = 0;      // macho::SectionType
  std::uint32_t address = 0;  // within one segment, with all bytes
  std::uint32_t size = 0;
};

struct MachoFile {
  std::vector<MachoSegment> segments;  // in the file's order; they do not overlap
  std::vector<MachoSection> sections;
  std::vector<std::string> libraries;  // that it takes symbols from, numbered from 1
  ByteView rebase, bind, weakBind, lazyBind, exports;
  std::uint32_t lowest = 0;         // the first segment's address
  std::uint32_t span = 0;           // bytes from there to the end of the last segment
  std::uint32_t headerAddress = 0;  // where the header itself lies in memory

  // The segment that holds all of [address, address + size), or null.
  const MachoSegment* Holding(std::uint32_t address, std::uint32_t size) const;
};

// Takes the bytes of a file apart; the result refers to them. Throws FileFault for everything that
// is not a well-formed 32-bit Intel library with compressed loader information.
MachoFile ParseMacho(ByteView bytes);

}  // namespace host
