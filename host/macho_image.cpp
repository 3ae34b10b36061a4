#include "host/macho_image.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <stdexcept>
#include <utility>

#include "host/macho_format.h"
#include "host/macho_symbols.h"

// Of the C library: runs what a library left to be run at its end.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library names it so.
extern "C" void __cxa_finalize(void* library);

namespace host {

namespace {

constexpr std::uint32_t kWordBytes = 4;
constexpr off_t kLargestFile = 256 << 20;  // bytes

void* Pointer(std::uint32_t address) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

}  // namespace

MachoImage::MachoImage(std::vector<std::uint8_t> bytes)
    : bytes_(std::move(bytes)),
      file_(ParseMacho(ByteView(bytes_.data(), bytes_.size(), "bytes"))),
      exports_(file_.exports),
      memory_(file_) {
  ForEachRebase(file_, [&](FixupKind kind, std::uint32_t linked) { Rebase(kind, linked); });
  for (const BindList list : {BindList::kAtOnce, BindList::kWeak, BindList::kLazy}) {
    ForEachBind(file_, list, [&](const MachoBind& bind) { Bind(list, bind); });
  }
  CollectRoutines();
  RegisterFrames();
  memory_.Protect(file_);
}

MachoImage::~MachoImage() {
  if (!initialised_) return;
  for (; !terminators_.empty(); terminators_.pop_back()) {
    reinterpret_cast<void (*)()>(Pointer(terminators_.back()))();
  }
  __cxa_finalize(Pointer(memory_.Address(file_.headerAddress)));
}

void MachoImage::Initialise() {
  // Initialisers are given what a program's main function is, and a few facts about the program.
  using Initialiser = void(int, char**, char**, char**, const void*);
  char* none[] = {nullptr};
  initialised_ = true;
  for (const std::uint32_t address : initialisers_) {
    reinterpret_cast<Initialiser*>(Pointer(address))(0, none, environ, none, nullptr);
  }
}

void MachoImage::Rebase(FixupKind kind, std::uint32_t linked) {
  const std::uint32_t moved = memory_.Moved();
  const std::uint32_t word = memory_.Word(linked);
  // A distance to what does not move shrinks as the library moves up.
  memory_.SetWord(linked, kind == FixupKind::kRelative ? word - moved : word + moved);
}

void MachoImage::Bind(BindList list, const MachoBind& bind) {
  std::uint32_t target = 0;
  if (list == BindList::kWeak) {
    // The library keeps its own; a word that nobody has a symbol for stays as the other
    // instructions left it.
    const std::optional<std::uint32_t> own = OwnAddress(bind.symbol);
    const void* others = own.has_value() ? nullptr : ProcessAddress(bind.symbol);
    if (!own.has_value() && others == nullptr) return;
    target = own.has_value() ? *own
                             : static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(others));
  } else {
    target = AddressFor(bind);
  }
  target += static_cast<std::uint32_t>(bind.addend);
  if (bind.kind == FixupKind::kRelative) target -= memory_.Address(bind.address) + kWordBytes;
  memory_.SetWord(bind.address, target);
}

// 0 for a weak import that is missing.
std::uint32_t MachoImage::AddressFor(const MachoBind& bind) const {
  if (bind.library == 0) {
    const std::optional<std::uint32_t> own = OwnAddress(bind.symbol);
    if (own.has_value()) return *own;
  } else {
    const void* found = ProcessAddress(bind.symbol);
    if (found != nullptr) {
      return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(found));
    }
  }
  if (bind.weakImport) return 0;
  throw FileFault("it needs " + bind.symbol + " of " + Provider(bind.library) +
                  ", which this program does not have");
}

std::string MachoImage::Provider(int library) const {
  if (library > 0) return file_.libraries[static_cast<std::size_t>(library) - 1];
  return library == 0 ? "its own" : "any library";
}

std::optional<std::uint32_t> MachoImage::OwnAddress(const std::string& symbol) const {
  const std::optional<std::uint32_t> offset = exports_.Find(symbol);
  if (!offset.has_value()) return std::nullopt;
  const std::uint32_t linked = file_.headerAddress + *offset;
  if (file_.Holding(linked, 1) == nullptr) return std::nullopt;
  return memory_.Address(linked);
}

void MachoImage::CollectRoutines() {
  for (const MachoSection& section : file_.sections) {
    const bool first = section.type == macho::kInitialisers;
    if (!first && section.type != macho::kTerminators) continue;
    if (section.size % kWordBytes != 0) throw FileFault("it has half an initialiser");
    for (std::uint32_t i = 0; i < section.size; i += kWordBytes) {
      const std::uint32_t address = memory_.Word(section.address + i);
      if (!IsCode(memory_.LinkedAddress(address), 1)) {
        throw FileFault("it has an initialiser outside its code");
      }
      (first ? initialisers_ : terminators_).push_back(address);
    }
  }
}

void MachoImage::RegisterFrames() {
  for (const MachoSection& section : file_.sections) {
    if (section.name != "__eh_frame") continue;
    const ByteView tables(memory_.At(section.address), section.size, "exception tables");
    frames_.push_back(std::make_unique<RegisteredFrames>(
        TranslateFrames(tables, memory_.Address(section.address),
                        [&](const FrameAddress& target) { return Allows(target); })));
  }
}

bool MachoImage::Allows(const FrameAddress& target) const {
  const std::uint32_t linked = memory_.LinkedAddress(target.address);
  if (target.indirect) {
    return file_.Holding(linked, kWordBytes) != nullptr && memory_.Word(linked) != 0;
  }
  if (target.target == FrameTarget::kHandlers) return file_.Holding(linked, target.size) != nullptr;
  return IsCode(linked, target.size);
}

bool MachoImage::IsCode(std::uint32_t linked, std::uint32_t size) const {
  const MachoSegment* segment = file_.Holding(linked, size);
  return segment != nullptr && (segment->protection & macho::kCode) != 0;
}

void* MachoImage::Find(const std::string& name) const {
  const std::optional<std::uint32_t> address = OwnAddress('_' + name);
  return address.has_value() ? Pointer(*address) : nullptr;
}

std::vector<MemoryRange> MachoImage::Ranges() const {
  std::vector<MemoryRange> ranges;
  for (const MachoSegment& segment : file_.segments) {
    if (segment.size == 0) continue;
    const auto first = reinterpret_cast<std::uintptr_t>(memory_.At(segment.address));
    ranges.push_back({first, first + segment.size, (segment.protection & macho::kWritable) != 0});
  }
  return ranges;
}

std::shared_ptr<MachoImage> LoadMachoFile(const std::string& path) {
  static std::map<std::pair<dev_t, ino_t>, std::weak_ptr<MachoImage>> loaded;
  struct stat status = {};
  std::ifstream file(path, std::ios::binary);
  if (!file || stat(path.c_str(), &status) != 0)
    throw std::runtime_error(path + ": cannot be read");
  if (status.st_size > kLargestFile) throw std::runtime_error(path + ": too large for a library");
  std::weak_ptr<MachoImage>& known = loaded[{status.st_dev, status.st_ino}];
  std::shared_ptr<MachoImage> image = known.lock();
  if (image != nullptr) return image;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  try {
    image = std::make_shared<MachoImage>(std::move(bytes));
  } catch (const FileFault& fault) {
    throw std::runtime_error(path + ": " + fault.what());
  }
  image->Initialise();
  known = image;
  return image;
}

}  // namespace host
