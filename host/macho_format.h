// The numbers of the Mach-O file format, as far as a 32-bit Intel library uses them.
#pragma once

#include <cstdint>

namespace host::macho {

// A file starts with seven words: magic, processor, its variant, kind of file, number of load
// commands, their size in bytes, flags. The load commands follow.
inline constexpr std::uint32_t kMagic = 0xFEEDFACE;
inline constexpr std::uint32_t kMagic64 = 0xFEEDFACF;
inline constexpr std::uint32_t kMagicOtherEndian = 0xCEFAEDFE;
inline constexpr std::uint32_t kMagic64OtherEndian = 0xCFFAEDFE;
inline constexpr std::uint32_t kHeaderBytes = 28;
inline constexpr std::uint32_t kIntel = 7;
inline constexpr std::uint32_t kIntel64 = 0x01000007;

// Kinds of files.
inline constexpr std::uint32_t kObject = 1;
inline constexpr std::uint32_t kExecutable = 2;
inline constexpr std::uint32_t kLibrary = 6;
inline constexpr std::uint32_t kBundle = 8;

// A universal file: this word and the number of parts, then for each part processor, variant,
// offset, size and alignment; all big endian.
inline constexpr std::uint32_t kUniversalMagic = 0xCAFEBABE;
inline constexpr std::uint32_t kUniversalPartBytes = 20;

// Load commands: each starts with its number and its size in bytes.
inline constexpr std::uint32_t kRequired = 0x80000000;  // a loader must know the command
inline constexpr std::uint32_t kSegment = 0x1;
inline constexpr std::uint32_t kSymbolTable = 0x2;
inline constexpr std::uint32_t kLoadLibrary = 0xC;
inline constexpr std::uint32_t kOwnName = 0xD;
inline constexpr std::uint32_t kInitialRoutine = 0x11;
inline constexpr std::uint32_t kLoadWeakLibrary = 0x18 | kRequired;
inline constexpr std::uint32_t kSearchPath = 0x1C | kRequired;
inline constexpr std::uint32_t kReexportLibrary = 0x1F | kRequired;
inline constexpr std::uint32_t kLazyLoadLibrary = 0x20;
inline constexpr std::uint32_t kLoaderInfo = 0x22;  // with or without kRequired
inline constexpr std::uint32_t kLoadUpwardLibrary = 0x23 | kRequired;

// A segment command: name (16 bytes), address, size, file offset, file size, most protection, first
// protection, number of sections, flags. A section: name, segment's name, address, size, file
// offset, alignment, relocations' offset and number, flags (the type is the low byte), two words.
inline constexpr std::uint32_t kSegmentBytes = 56;
inline constexpr std::uint32_t kSectionBytes = 68;
inline constexpr std::uint32_t kNameBytes = 16;
inline constexpr std::uint32_t kReadable = 1;
inline constexpr std::uint32_t kWritable = 2;
inline constexpr std::uint32_t kCode = 4;
inline constexpr std::uint32_t kEncryptedSegment = 0x8;
inline constexpr std::uint32_t kReadOnlySegment = 0x10;  // once its pointers are in place

enum SectionType : std::uint8_t {
  kZeroFilled = 0x1,
  kInitialisers = 0x9,
  kTerminators = 0xA,
  kLargeZeroFilled = 0xC,
  kFirstThreadLocal = 0x11,
  kZeroFilledThreadLocal = 0x12,
  kLastThreadLocal = 0x15,
};

// Rebase and bind instructions: the operation in the high four bits, a number in the low ones.
enum Rebase : std::uint8_t {
  kRebaseDone = 0x00,
  kRebaseType = 0x10,
  kRebasePlace = 0x20,
  kRebaseAdd = 0x30,
  kRebaseAddWords = 0x40,
  kRebaseTimes = 0x50,
  kRebaseUlebTimes = 0x60,
  kRebaseThenAdd = 0x70,
  kRebaseTimesSkipping = 0x80,
};
enum Bind : std::uint8_t {
  kBindDone = 0x00,
  kBindLibrary = 0x10,
  kBindUlebLibrary = 0x20,
  kBindSpecialLibrary = 0x30,
  kBindSymbol = 0x40,
  kBindType = 0x50,
  kBindAddend = 0x60,
  kBindPlace = 0x70,
  kBindAdd = 0x80,
  kBindHere = 0x90,
  kBindThenAdd = 0xA0,
  kBindThenAddWords = 0xB0,
  kBindTimesSkipping = 0xC0,
};
inline constexpr std::uint8_t kWeakImport = 1;  // in a symbol's flags

// Flags of an exported symbol.
inline constexpr std::uint64_t kExportKind = 3;  // 0: an address in the library
inline constexpr std::uint64_t kReexported = 8;
inline constexpr std::uint64_t kResolver = 16;

}  // namespace host::macho
