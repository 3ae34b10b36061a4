#include "host/dwarf_registers.h"

#include "host/byte_view.h"

namespace host {

namespace {

constexpr char kWhose[] = "call frame instructions";
constexpr std::uint64_t kLastRegister = 8;  // the return address

// Call frame instructions that carry a register or distance in their low six bits.
enum Compact : std::uint8_t {
  kCompactMask = 0xC0,
  kAdvance = 0x40,
  kOffset = 0x80,
  kRestore = 0xC0,
};

// The others.
enum Call : std::uint8_t {
  kNothing = 0x00,
  kSetLocation = 0x01,
  kAdvanceByte = 0x02,
  kAdvanceHalfWord = 0x03,
  kAdvanceWord = 0x04,
  kOffsetExtended = 0x05,
  kRestoreExtended = 0x06,
  kUndefined = 0x07,
  kSameValue = 0x08,
  kRegister = 0x09,
  kRememberState = 0x0A,
  kRestoreState = 0x0B,
  kDefineFrame = 0x0C,
  kDefineFrameRegister = 0x0D,
  kDefineFrameOffset = 0x0E,
  kDefineFrameExpression = 0x0F,
  kExpression = 0x10,
  kOffsetExtendedSigned = 0x11,
  kDefineFrameSigned = 0x12,
  kDefineFrameOffsetSigned = 0x13,
  kValueOffset = 0x14,
  kValueOffsetSigned = 0x15,
  kValueExpression = 0x16,
  kArgumentsSize = 0x2E,
  kNegativeOffsetExtended = 0x2F,
};

class Exchange {
 public:
  Exchange(std::vector<std::uint8_t>& bytes, std::size_t first, std::size_t last,
           const std::function<void(std::size_t)>& takePointer)
      : bytes_(bytes),
        cursor_(ByteView(bytes.data(), last, kWhose), first),
        takePointer_(takePointer),
        whole_(last) {}

  void Run() {
    while (!cursor_.AtEnd()) {
      const std::size_t at = cursor_.Offset();
      const std::uint8_t instruction = cursor_.Byte();
      switch (instruction & kCompactMask) {
        case kAdvance:
          break;
        case kOffset:
          ExchangeWithin(at, instruction, kOffset);
          cursor_.Uleb();
          break;
        case kRestore:
          ExchangeWithin(at, instruction, kRestore);
          break;
        default:
          Step(instruction);
      }
    }
  }

 private:
  void Step(std::uint8_t instruction) {
    switch (instruction) {
      case kNothing:
        return;
      case kSetLocation:
        takePointer_(cursor_.Offset());
        cursor_.Skip(4);
        return;
      case kAdvanceByte:
        return cursor_.Skip(1);
      case kAdvanceHalfWord:
        return cursor_.Skip(2);
      case kAdvanceWord:
        return cursor_.Skip(4);
      case kRestoreExtended:
      case kUndefined:
      case kSameValue:
      case kDefineFrameRegister:
        return ExchangeRegister();
      case kOffsetExtended:
      case kDefineFrame:
      case kOffsetExtendedSigned:
      case kDefineFrameSigned:
      case kValueOffset:
      case kValueOffsetSigned:
      case kNegativeOffsetExtended:
        ExchangeRegister();
        cursor_.Uleb();
        return;
      case kRegister:
        ExchangeRegister();
        return ExchangeRegister();
      case kRememberState:
        ++remembered_;
        return;
      case kRestoreState:
        if (remembered_-- == 0) Refuse("restore a frame that was not remembered");
        return;
      case kDefineFrameOffset:
      case kDefineFrameOffsetSigned:
      case kArgumentsSize:
        cursor_.Uleb();
        return;
      case kDefineFrameExpression:
        return ExchangeInExpression();
      case kExpression:
      case kValueExpression:
        ExchangeRegister();
        return ExchangeInExpression();
      default:
        Refuse("hold unknown instruction " + std::to_string(instruction));
    }
  }

  void ExchangeInExpression() {
    const std::uint64_t size = cursor_.Uleb();
    const std::size_t start = cursor_.Offset();
    cursor_.Skip(size);
    const std::size_t end = cursor_.Offset();
    cursor_ = ByteCursor(ByteView(bytes_.data(), end, kWhose), start);
    while (!cursor_.AtEnd()) StepInExpression();
    cursor_ = ByteCursor(ByteView(bytes_.data(), whole_, kWhose), end);
  }

  void StepInExpression() {
    const std::size_t at = cursor_.Offset();
    const std::uint8_t operation = cursor_.Byte();
    const auto within = [&](int first, int last) {
      return operation >= first && operation <= last;
    };
    if (within(0x50, 0x6F)) {  // a register
      ExchangeWithin(at, operation, 0x50);
    } else if (within(0x70, 0x8F)) {  // a register and a distance
      ExchangeWithin(at, operation, 0x70);
      cursor_.Sleb();
    } else if (operation == 0x90) {  // the same two with the number behind
      ExchangeRegister();
    } else if (operation == 0x92) {
      ExchangeRegister();
      cursor_.Sleb();
    } else if (operation == 0x08 || operation == 0x09 || operation == 0x15 || operation == 0x94) {
      cursor_.Skip(1);  // a constant, a place in the stack, a size
    } else if (within(0x0A, 0x0B) || operation == 0x28 || operation == 0x2F) {
      cursor_.Skip(2);  // a constant, a branch, a jump
    } else if (operation == 0x03 || within(0x0C, 0x0D)) {
      cursor_.Skip(4);  // an address, a constant
    } else if (within(0x0E, 0x0F)) {
      cursor_.Skip(8);
    } else if (operation == 0x10 || operation == 0x11 || operation == 0x23) {
      cursor_.Uleb();  // a constant, one to add
    } else if (!(operation == 0x06 || within(0x12, 0x14) || within(0x16, 0x17) ||
                 within(0x19, 0x22) || within(0x24, 0x27) || within(0x29, 0x2E) ||
                 within(0x30, 0x4F) || operation == 0x96)) {  // those without anything behind
      Refuse("hold unknown operation " + std::to_string(operation));
    }
  }

  void ExchangeRegister() {
    const std::size_t at = cursor_.Offset();
    const std::uint64_t number = cursor_.Uleb();
    Check(number);
    if (number == 4 || number == 5) bytes_[at] ^= 1;  // the lowest bits come first
  }

  // The register is what `byte` holds above `base`.
  void ExchangeWithin(std::size_t at, std::uint8_t byte, std::uint8_t base) {
    const auto number = static_cast<std::uint8_t>(byte - base);
    Check(number);
    if (number == 4 || number == 5) bytes_[at] = static_cast<std::uint8_t>(base + (number ^ 1));
  }

  static void Check(std::uint64_t number) {
    if (number > kLastRegister) Refuse("name register " + std::to_string(number));
  }

  [[noreturn]] static void Refuse(const std::string& what) {
    throw FileFault(std::string("its ") + kWhose + " " + what);
  }

  std::vector<std::uint8_t>& bytes_;
  ByteCursor cursor_;
  const std::function<void(std::size_t)>& takePointer_;
  std::size_t whole_;  // where the instructions end
  unsigned remembered_ = 0;
};

}  // namespace

void ExchangeStackRegisters(std::vector<std::uint8_t>& bytes, std::size_t first, std::size_t last,
                            const std::function<void(std::size_t)>& takePointer) {
  Exchange(bytes, first, last, takePointer).Run();
}

}  // namespace host
