// The memory of a loaded Mach-O library.
#pragma once

#include <cstdint>

#include "host/macho_file.h"

namespace host {

// Maps the segments of a file, all writable at first, at a place of the system's choice. Addresses
// with `linked` in their name are those that the file was linked for; the others are this
// process's, modulo 2^32.
class MachoMemory {
 public:
  // Throws FileFault when there is no room or this is not a 32-bit process.
  explicit MachoMemory(const MachoFile& file);
  ~MachoMemory();
  MachoMemory(const MachoMemory&) = delete;
  MachoMemory& operator=(const MachoMemory&) = delete;

  // Gives every segment its own protection.
  void Protect(const MachoFile& file);

  std::uint8_t* At(std::uint32_t linked) const { return start_ + (linked - lowest_); }
  std::uint32_t Address(std::uint32_t linked) const { return linked + Moved(); }
  std::uint32_t LinkedAddress(std::uint32_t address) const { return address - Moved(); }
  std::uint32_t Moved() const;  // how far, modulo 2^32

  // Words need not lie at multiples of their size.
  std::uint32_t Word(std::uint32_t linked) const;
  void SetWord(std::uint32_t linked, std::uint32_t value) const;

 private:
  std::uint8_t* start_ = nullptr;
  std::uint32_t lowest_;
  std::uint32_t span_;
};

}  // namespace host
