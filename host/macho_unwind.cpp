#include "host/macho_unwind.h"

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/dwarf_registers.h"

// Of the library that unwinds this process.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the library names them so.
void __register_frame(void* tables);
void __deregister_frame(void* tables);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace host {

namespace {

constexpr char kWhose[] = "exception tables";
constexpr std::uint32_t kWordBytes = 4;
constexpr std::uint64_t kReturnAddress = 8;  // its register number

// How an address is written: its size and sign, what it is a distance from, whether it is the place
// of a pointer.
constexpr std::uint8_t kOmitted = 0xFF;
constexpr std::uint8_t kSizeMask = 0x0F;
constexpr std::uint8_t kFromMask = 0x70;
constexpr std::uint8_t kFromItself = 0x10;
constexpr std::uint8_t kIndirect = 0x80;

[[noreturn]] void Refuse(const std::string& what) {
  throw FileFault(std::string("its ") + kWhose + " " + what);
}

void CheckEncoding(std::uint8_t encoding) {
  const int size = encoding & kSizeMask, from = encoding & kFromMask;
  const bool fourBytes = size == 0x00 || size == 0x03 || size == 0x0B;
  if (!fourBytes || (from != 0 && from != kFromItself)) {
    Refuse("hold addresses of form " + std::to_string(encoding));
  }
}

// What several functions' tables have in common.
struct Common {
  bool sized = false;  // what augments an entry tells its own size
  std::uint8_t code = 0;
  std::uint8_t handlers = kOmitted;
};

class Translation {
 public:
  Translation(ByteView tables, std::uint32_t address,
              const std::function<bool(const FrameAddress&)>& allow)
      : copy_(tables.Data(), tables.Data() + tables.Size()), address_(address), allow_(allow) {
    copy_.resize(tables.Size() + kWordBytes);  // the end: an entry of no length
    // Modulo 2^32, as all distances are.
    moved_ = address - static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(copy_.data()));
  }

  std::vector<std::uint8_t> Run() {
    bool anyFunction = false;
    std::size_t at = 0;
    while (true) {
      const ByteView all(copy_.data(), copy_.size(), kWhose);
      const std::uint32_t length = all.Word(at);
      if (length == 0) break;
      const std::size_t start = at + kWordBytes;
      const std::size_t end = start + all.Part(start, length, kWhose).Size();
      if (end > copy_.size() - kWordBytes) Refuse("end too early");
      const std::uint32_t back = all.Word(start);
      if (back == 0) {
        commons_[at] = TakeCommon(start + kWordBytes, end);
      } else {
        const auto common = commons_.find(start - back);
        if (back > start || common == commons_.end()) Refuse("do not belong together");
        TakeFunction(common->second, start + kWordBytes, end);
        anyFunction = true;
      }
      at = end;
    }
    if (!anyFunction) copy_.clear();
    return std::move(copy_);
  }

 private:
  ByteCursor Cursor(std::size_t start, std::size_t end) const {
    return ByteCursor(ByteView(copy_.data(), end, kWhose), start);
  }

  Common TakeCommon(std::size_t start, std::size_t end) {
    ByteCursor cursor = Cursor(start, end);
    Common common;
    const std::uint8_t version = cursor.Byte();
    if (version != 1 && version != 3) Refuse("are of version " + std::to_string(version));
    const std::string augmentation = cursor.Text();
    cursor.Uleb();  // the unit of code
    cursor.Sleb();  // the unit of data
    const std::uint64_t returnAddress = version == 1 ? cursor.Byte() : cursor.Uleb();
    if (returnAddress != kReturnAddress) Refuse("are of another processor");
    if (augmentation.empty()) {
      Exchange(common, cursor.Offset(), end);
      return common;
    }
    if (augmentation[0] != 'z') Refuse("are of an unknown form");
    common.sized = true;
    const std::uint64_t size = cursor.Uleb();
    const std::size_t instructions = Behind(cursor, size);
    cursor = Cursor(cursor.Offset(), instructions);
    for (const char kind : augmentation.substr(1)) {
      switch (kind) {
        case 'R':
          common.code = Encoding(cursor);
          if ((common.code & kIndirect) != 0) Refuse("hold the places of functions' addresses");
          break;
        case 'L':
          common.handlers = cursor.Byte();
          if (common.handlers != kOmitted) CheckEncoding(common.handlers);
          break;
        case 'P': {
          const std::uint8_t encoding = Encoding(cursor);
          if (TakeAddress(cursor, encoding, FrameTarget::kPersonality, kWordBytes)) break;
          Refuse("name no personality");
        }
        case 'S':  // a signal's frame
          break;
        default:
          Refuse("are of an unknown form");
      }
    }
    Exchange(common, instructions, end);
    return common;
  }

  void TakeFunction(const Common& common, std::size_t start, std::size_t end) {
    ByteCursor cursor = Cursor(start, end);
    ByteCursor ahead = cursor;
    ahead.Skip(kWordBytes);
    const std::uint32_t size = ahead.Word();
    if (!TakeAddress(cursor, common.code, FrameTarget::kCode, size)) Refuse("hold no function");
    cursor = ahead;
    if (common.sized) {
      const std::uint64_t augmentation = cursor.Uleb();
      const std::size_t instructions = Behind(cursor, augmentation);
      if (common.handlers != kOmitted) {
        ByteCursor within = Cursor(cursor.Offset(), instructions);
        TakeAddress(within, common.handlers, FrameTarget::kHandlers, 1);
      }
      cursor = Cursor(instructions, end);
    }
    Exchange(common, cursor.Offset(), end);
  }

  static std::size_t Behind(ByteCursor cursor, std::uint64_t bytes) {
    cursor.Skip(bytes);
    return cursor.Offset();
  }

  static std::uint8_t Encoding(ByteCursor& cursor) {
    const std::uint8_t encoding = cursor.Byte();
    CheckEncoding(encoding);
    return encoding;
  }

  // Moves an address along with the tables. False when there is none.
  bool TakeAddress(ByteCursor& cursor, std::uint8_t encoding, FrameTarget target,
                   std::uint32_t size) {
    const std::size_t at = cursor.Offset();
    std::uint32_t value = cursor.Word();
    if (value == 0) return false;
    const bool fromItself = (encoding & kFromMask) == kFromItself;
    const std::uint32_t base = fromItself ? address_ + static_cast<std::uint32_t>(at) : 0;
    if (!allow_({target, (encoding & kIndirect) != 0, base + value, size})) {
      Refuse("point out of the library");
    }
    if (fromItself) value += moved_;
    std::memcpy(copy_.data() + at, &value, sizeof value);
    return true;
  }

  void Exchange(const Common& common, std::size_t first, std::size_t last) {
    ExchangeStackRegisters(copy_, first, last, [&](std::size_t at) {
      ByteCursor cursor = Cursor(at, last);
      TakeAddress(cursor, common.code, FrameTarget::kCode, 0);
    });
  }

  std::vector<std::uint8_t> copy_;
  std::uint32_t address_;
  std::uint32_t moved_ = 0;
  const std::function<bool(const FrameAddress&)>& allow_;
  std::map<std::size_t, Common> commons_;  // by their place
};

}  // namespace

std::vector<std::uint8_t> TranslateFrames(ByteView tables, std::uint32_t address,
                                          const std::function<bool(const FrameAddress&)>& allow) {
  return Translation(tables, address, allow).Run();
}

RegisteredFrames::RegisteredFrames(std::vector<std::uint8_t> tables) : tables_(std::move(tables)) {
  if (!tables_.empty()) __register_frame(tables_.data());
}

RegisteredFrames::~RegisteredFrames() {
  if (!tables_.empty()) __deregister_frame(tables_.data());
}

}  // namespace host
