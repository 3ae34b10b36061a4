#include "host/macho_fixups.h"

#include "host/macho_format.h"

namespace host {

namespace {

constexpr std::uint32_t kWordBytes = 4;
constexpr std::uint8_t kNumber = 0x0F;  // of an instruction
constexpr int kLowestLibrary = -3;

FixupKind KindOf(std::uint8_t number) {
  if (number < 1 || number > 3) throw FileFault("it has pointers of an unknown kind");
  return static_cast<FixupKind>(number);
}

// The word that instructions are about. Offsets wrap at 32 bits, which is how they go backwards.
class Place {
 public:
  explicit Place(const MachoFile& file) : file_(file) {
    for (const MachoSegment& segment : file.segments) left_ += segment.content.Size() / kWordBytes;
  }

  void Set(std::size_t segment, std::uint64_t offset) {
    if (segment >= file_.segments.size()) throw FileFault("it has pointers in no segment");
    segment_ = &file_.segments[segment];
    offset_ = static_cast<std::uint32_t>(offset);
  }
  void Add(std::uint64_t bytes) { offset_ += static_cast<std::uint32_t>(bytes); }

  // The address of the word, which counts as one that was asked for.
  std::uint32_t Take() {
    const std::size_t bytes = segment_ == nullptr ? 0 : segment_->content.Size();
    if (bytes < kWordBytes || offset_ > bytes - kWordBytes) {
      throw FileFault("it has pointers in no segment");
    }
    if (left_-- == 0) throw FileFault("it has more pointers than room for them");
    return segment_->address + offset_;
  }

 private:
  const MachoFile& file_;
  std::uint64_t left_ = 0;  // words that may still be asked for
  const MachoSegment* segment_ = nullptr;
  std::uint32_t offset_ = 0;
};

class BindRun {
 public:
  BindRun(const MachoFile& file, BindList list, const std::function<void(const MachoBind&)>& take)
      : cursor_(list == BindList::kAtOnce ? file.bind
                : list == BindList::kWeak ? file.weakBind
                                          : file.lazyBind),
        list_(list),
        libraries_(file.libraries.size()),
        place_(file),
        take_(take) {}

  void Run() {
    while (!cursor_.AtEnd()) {
      const std::uint8_t instruction = cursor_.Byte();
      const std::uint8_t number = instruction & kNumber;
      const std::uint8_t operation = instruction & static_cast<std::uint8_t>(~kNumber);
      if (operation == macho::kBindDone) {
        if (list_ == BindList::kLazy) continue;
        return;
      }
      Step(operation, number);
    }
  }

 private:
  void Step(std::uint8_t operation, std::uint8_t number) {
    switch (operation) {
      case macho::kBindLibrary:
        return SetLibrary(number);
      case macho::kBindUlebLibrary:
        return SetLibrary(cursor_.Uleb());
      case macho::kBindSpecialLibrary:
        // Four bits with a sign.
        bind_.library = number == 0 ? 0 : number - 16;
        if (bind_.library < kLowestLibrary) throw FileFault("it binds to an unknown library");
        return;
      case macho::kBindSymbol:
        bind_.weakImport = (number & macho::kWeakImport) != 0;
        bind_.symbol = cursor_.Text();
        return;
      case macho::kBindType:
        bind_.kind = KindOf(number);
        return;
      case macho::kBindAddend:
        bind_.addend = cursor_.Sleb();
        return;
      case macho::kBindPlace:
        return place_.Set(number, cursor_.Uleb());
      case macho::kBindAdd:
        return place_.Add(cursor_.Uleb());
      case macho::kBindHere:
        return Bind(0);
      case macho::kBindThenAdd:
        Bind(0);
        return place_.Add(cursor_.Uleb());
      case macho::kBindThenAddWords:
        return Bind(std::uint64_t{number} * kWordBytes);
      case macho::kBindTimesSkipping: {
        const std::uint64_t times = cursor_.Uleb(), skip = cursor_.Uleb();
        for (std::uint64_t i = 0; i < times; ++i) Bind(skip);
        return;
      }
      default:
        throw FileFault("it has an unknown bind instruction");
    }
  }

  void SetLibrary(std::uint64_t number) {
    if (number > libraries_) throw FileFault("it binds to an unknown library");
    bind_.library = static_cast<int>(number);
  }

  void Bind(std::uint64_t skip) {
    if (bind_.symbol.empty()) throw FileFault("it binds to a symbol without a name");
    bind_.address = place_.Take();
    take_(bind_);
    place_.Add(kWordBytes + skip);
  }

  ByteCursor cursor_;
  BindList list_;
  std::size_t libraries_;
  Place place_;
  const std::function<void(const MachoBind&)>& take_;
  MachoBind bind_;
};

}  // namespace

void ForEachRebase(const MachoFile& file,
                   const std::function<void(FixupKind, std::uint32_t address)>& take) {
  ByteCursor cursor(file.rebase);
  Place place(file);
  FixupKind kind = FixupKind::kPointer;
  const auto rebase = [&](std::uint64_t times, std::uint64_t skip) {
    for (std::uint64_t i = 0; i < times; ++i) {
      take(kind, place.Take());
      place.Add(kWordBytes + skip);
    }
  };
  while (!cursor.AtEnd()) {
    const std::uint8_t instruction = cursor.Byte();
    const std::uint8_t number = instruction & kNumber;
    switch (instruction & ~kNumber) {
      case macho::kRebaseDone:
        return;
      case macho::kRebaseType:
        kind = KindOf(number);
        break;
      case macho::kRebasePlace:
        place.Set(number, cursor.Uleb());
        break;
      case macho::kRebaseAdd:
        place.Add(cursor.Uleb());
        break;
      case macho::kRebaseAddWords:
        place.Add(std::uint64_t{number} * kWordBytes);
        break;
      case macho::kRebaseTimes:
        rebase(number, 0);
        break;
      case macho::kRebaseUlebTimes:
        rebase(cursor.Uleb(), 0);
        break;
      case macho::kRebaseThenAdd:
        rebase(1, cursor.Uleb());
        break;
      case macho::kRebaseTimesSkipping: {
        const std::uint64_t times = cursor.Uleb(), skip = cursor.Uleb();
        rebase(times, skip);
        break;
      }
      default:
        throw FileFault("it has an unknown rebase instruction");
    }
  }
}

void ForEachBind(const MachoFile& file, BindList list,
                 const std::function<void(const MachoBind&)>& take) {
  BindRun(file, list, take).Run();
}

}  // namespace host
