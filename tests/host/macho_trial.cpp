#include "tests/host/macho_trial.h"

extern "C" {
__attribute__((visibility("default"))) int gMachoTrialEnded = 0;
__attribute__((visibility("default"))) int MachoTrialCallee() { return 77; }
__attribute__((visibility("default"))) int MachoTrialShared() { return 78; }
}

namespace macho_test {

namespace {

constexpr std::uint32_t kCounter = kData;

std::uint32_t SlotOf(Pointers pointer) {
  return kData + 4 + 4 * static_cast<std::uint32_t>(pointer);
}

class Maker {
 public:
  Library Make() {
    Data();
    Simple();
    Through();
    Caught();
    Starters();
    library_.rebase = Rebases(rebases_);
    library_.bind = Binds(imports_);
    library_.lazyBind = Binds({{"_free", SlotOf(kLazily)}}).Byte(0).Byte(0);
    library_.weakBind = Binds({{"_MachoTrialShared", SlotOf(kOwnWeakly)},
                               {"_strlen", SlotOf(kForeignWeakly)},
                               {"_nobody_has_this", SlotOf(kNobodysWeakly)}});
    library_.exports = ExportTree(exports_);
    return library_;
  }

 private:
  std::uint32_t Here() const { return kCode + static_cast<std::uint32_t>(library_.code.size()); }
  Bytes& Code() { return library_.code; }
  Bytes& Function(const char* name) {
    exports_.push_back({std::string("_") + name, Here()});
    return Code();
  }
  // The address of a word of data within an instruction.
  void Absolute(std::uint32_t address) {
    rebases_.push_back({Here(), 2});
    Code().Word(address);
  }

  void Data() {
    library_.data.Word(5);
    library_.data.resize(4 + 4 * kPointers);
    exports_.push_back({"_counter", kCounter});
    exports_.push_back({"_MachoTrialShared", kCode});
    exports_.push_back({"_pointers", SlotOf(kToAnswer)});
    for (const Pointers pointer : {kToAnswer, kOwnWeakly, kNobodysWeakly}) {
      library_.data.SetWord(SlotOf(pointer) - kData, kCode);
      rebases_.push_back({SlotOf(pointer)});
    }
    imports_ = {{"_strlen", SlotOf(kToStrlen)},
                {"_strlen", SlotOf(kToStrlenPlus2), 1, 1, 2},
                {"_nobody_has_this", SlotOf(kMissing), 1, 1, 0, true},
                {"___gxx_personality_v0", SlotOf(kPersonality), -2},
                {"___cxa_begin_catch", SlotOf(kBeginCatch)},
                {"___cxa_end_catch", SlotOf(kEndCatch)},
                {"__Unwind_Resume", SlotOf(kResume)},
                {"__ZTISt11range_error", SlotOf(kTypeInfo)},
                {"_gMachoTrialEnded", SlotOf(kPointerToEnded)}};
  }

  void Simple() {
    Function("answer").Byte(0xB8).Word(42).Byte(0xC3);  // mov eax, 42; ret
    Function("counted").Byte(0xA1);                     // mov eax, [counter]
    Absolute(kCounter);
    Code().Byte(0xC3);                     // ret
    Function("length").Add({0xFF, 0x25});  // jmp [strlen]
    Absolute(SlotOf(kToStrlen));
    Function("callee").Byte(0xE9);  // jmp MachoTrialCallee
    imports_.push_back({"_MachoTrialCallee", Here(), 1, 3});
    Code().Word(0);
  }

  // The common part of tables: the frame lies 4 above the stack pointer, which is register 5, and
  // the return address 4 below it.
  static Bytes Common(const std::string& augmentation, const Bytes& data) {
    Bytes out;
    out.Word(0).Byte(1).Text(augmentation).Uleb(1).Sleb(-4).Byte(8).Uleb(data.size()).Add(data);
    return out.Add({0x0C, 5, 4, 0x88, 1});
  }
  // Adds an entry; gives its offset.
  std::uint32_t Entry(const Bytes& content) {
    const auto at = static_cast<std::uint32_t>(library_.frames.size());
    library_.frames.Word(static_cast<std::uint32_t>(content.size())).Add(content);
    return at;
  }
  // A function's entry up to its augmentation's size, the way back to its common part first.
  Bytes FunctionEntry(std::uint32_t common, std::uint32_t first) const {
    const auto at = static_cast<std::uint32_t>(library_.frames.size()) + 4;
    Bytes out;
    return out.Word(at - common).Word(first - (kFrames + at + 4)).Word(Here() - first);
  }
  // push ebp; mov ebp, esp: the frame pointer is register 4.
  static const Bytes& Prologue() {
    static const Bytes bytes = {0x41, 0x0E, 8, 0x84, 2, 0x42, 0x0D, 4};
    return bytes;
  }

  void Through() {
    const std::uint32_t first = Here();
    // push ebp; mov ebp, esp; sub esp, 8; call [ebp+8]; leave; ret
    Function("through").Add({0x55, 0x89, 0xE5, 0x83, 0xEC, 8, 0xFF, 0x55, 8, 0xC9, 0xC3});
    const std::uint32_t common = Entry(Common("zR", {0x10}));
    Entry(FunctionEntry(common, first).Uleb(0).Add(Prologue()));
  }

  void Caught() {
    const std::uint32_t first = Here();
    // push ebp; mov ebp, esp; push esi; sub esp, 20; mov esi, [ebp+12]
    Function("caught").Add({0x55, 0x89, 0xE5, 0x56, 0x83, 0xEC, 20, 0x8B, 0x75, 12});
    const std::uint32_t callStart = Here();
    Code().Add({0xFF, 0x55, 8});  // call [ebp+8]
    const std::uint32_t callEnd = Here();
    Code().Add({0x31, 0xC0});  // xor eax, eax
    const std::uint32_t out = Here();
    Code().Add({0x83, 0xC4, 20, 0x5E, 0x5D, 0xC3});  // add esp, 20; pop esi; pop ebp; ret
    const std::uint32_t landing = Here();
    Code().Add({0x89, 0x16, 0x83, 0xFA, 1});  // mov [esi], edx; cmp edx, 1
    const std::size_t branch = Code().size() + 1;
    Code().Add({0x75, 0, 0x89, 0x04, 0x24, 0xFF, 0x15});  // jne resume; mov [esp], eax; call
    Absolute(SlotOf(kBeginCatch));
    Code().Add({0xFF, 0x15});
    Absolute(SlotOf(kEndCatch));
    Code().Byte(0xB8).Word(1);  // mov eax, 1; jmp out
    Code().Byte(0xEB).Byte((out - (Here() + 1)) & 0xFF);
    Code()[branch] = static_cast<std::uint8_t>(Code().size() - branch - 1);
    Code().Add({0x89, 0x04, 0x24, 0xFF, 0x15});  // resume: mov [esp], eax; call
    Absolute(SlotOf(kResume));
    const std::uint32_t last = Here();

    // What the personality reads lies behind the code. Of the two actions the first catches the
    // only type and leads to the second, which only cleans up.
    Bytes calls;
    calls.Uleb(callStart - first).Uleb(callEnd - callStart).Uleb(landing - first).Uleb(1);
    calls.Uleb(callEnd - first).Uleb(last - callEnd).Uleb(0).Uleb(0);
    const Bytes actions = {1, 1, 0, 0};
    Bytes handlers = {0xFF, 0x9B};
    handlers.Uleb(2 + calls.size() + actions.size() + 4).Byte(1).Uleb(calls.size());
    handlers.Add(calls).Add(actions);

    Bytes pointer;
    pointer.Byte(0x9B);
    const auto commonAt = static_cast<std::uint32_t>(library_.frames.size());
    constexpr std::uint32_t kBeforePersonality = 4 + 4 + 1 + 5 + 1 + 1 + 1 + 1 + 1;
    pointer.Word(SlotOf(kPersonality) - (kFrames + commonAt + kBeforePersonality));
    const std::uint32_t common = Entry(Common("zPLR", pointer.Byte(0x10).Byte(0x10)));
    Bytes entry = FunctionEntry(common, first);
    const std::uint32_t tables = Here();
    Code().Add(handlers);
    Code().Word(SlotOf(kTypeInfo) - Here());
    const auto at = static_cast<std::uint32_t>(library_.frames.size() + 4 + entry.size() + 1);
    Entry(entry.Uleb(4).Word(tables - (kFrames + at)).Add(Prologue()).Add({0x44, 0x86, 3}));
  }

  void Starters() {
    Starter(library_.starters, kStarters);
    Code().Add({0xFF, 0x05});  // inc [counter]
    Absolute(kCounter);
    Code().Byte(0xC3);
    Starter(library_.starters, kStarters);
    Code().Add({0xD1, 0x25});  // shl [counter], 1
    Absolute(kCounter);
    Code().Byte(0xC3);
    for (const std::uint8_t operation : {0x00, 0x20}) {
      Starter(library_.enders, kEnders);
      Code().Byte(0xA1);  // mov eax, [pointer]; inc or shl [eax]
      Absolute(SlotOf(kPointerToEnded));
      Code().Byte(operation == 0 ? 0xFF : 0xD1).Byte(operation).Byte(0xC3);
    }
  }
  // Makes what follows an initialiser or a terminator.
  void Starter(Bytes& list, std::uint32_t address) {
    rebases_.push_back({address + static_cast<std::uint32_t>(list.size())});
    list.Word(Here());
  }

  Library library_;
  std::vector<Export> exports_;
  std::vector<Pointer> rebases_;
  std::vector<Import> imports_;
};

}  // namespace

Library TrialLibrary() { return Maker().Make(); }

}  // namespace macho_test
