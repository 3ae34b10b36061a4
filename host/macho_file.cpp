#include "host/macho_file.h"

#include <algorithm>

#include "host/macho_format.h"

namespace host {

namespace {

constexpr std::uint32_t kPage = 4096;
constexpr std::uint32_t kLargestSpan = 256u << 20;  // more is taken for damage

void Demand(bool fulfilled, const std::string& fault) {
  if (!fulfilled) throw FileFault(fault);
}

// The 32-bit Intel part of a universal file; another file as it is.
ByteView IntelPart(ByteView bytes) {
  if (bytes.BigEndianWord(0) != macho::kUniversalMagic) return bytes;
  const std::uint32_t parts = bytes.BigEndianWord(4);
  const ByteView table =
      bytes.Part(8, std::uint64_t{parts} * macho::kUniversalPartBytes, "universal parts");
  for (std::uint32_t i = 0; i < parts; ++i) {
    const std::uint64_t at = std::uint64_t{i} * macho::kUniversalPartBytes;
    if (table.BigEndianWord(at) != macho::kIntel) continue;
    return bytes.Part(table.BigEndianWord(at + 8), table.BigEndianWord(at + 12), "Intel bytes");
  }
  throw FileFault("a universal macOS file without a part for 32-bit Intel processors");
}

void CheckHeader(ByteView file) {
  const std::uint32_t magic = file.Word(0);
  Demand(magic == macho::kMagic || magic == macho::kMagic64 || magic == macho::kMagicOtherEndian ||
             magic == macho::kMagic64OtherEndian,
         "not a shared library");
  const std::uint32_t processor = file.Word(4);
  Demand(magic != macho::kMagic64 || processor != macho::kIntel64,
         "a 64-bit Intel macOS file, but only 32-bit Intel libraries can be loaded");
  Demand(magic == macho::kMagic && processor == macho::kIntel,
         "a macOS file for another processor than 32-bit Intel");
  switch (file.Word(12)) {
    case macho::kLibrary:
      return;
    case macho::kObject:
      throw FileFault("a macOS object file, not a library");
    case macho::kExecutable:
      throw FileFault("a macOS program, not a library");
    case macho::kBundle:
      throw FileFault("a macOS bundle, not a library");
    default:
      throw FileFault("a macOS file of another kind, not a library");
  }
}

class Parser {
 public:
  explicit Parser(ByteView file) : file_(file) {}

  MachoFile Parse() {
    CheckHeader(file_);
    const std::uint32_t count = file_.Word(16);
    const ByteView commands = file_.Part(macho::kHeaderBytes, file_.Word(20), "load commands");
    std::uint32_t offset = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t size = commands.Word(std::uint64_t{offset} + 4);
      Demand(size >= 8 && size % 4 == 0 && size <= commands.Size() - offset,
             "it has a load command of a wrong size");
      Take(commands.Part(offset, size, "load command's bytes"));
      offset += size;
    }
    Demand(offset == commands.Size(), "its load commands do not fill their room");
    Demand(loaderInfo_, "it has no compressed loader information");
    Demand(ownName_, "it has no name of its own");
    Arrange(macho::kHeaderBytes + offset);
    return std::move(result_);
  }

 private:
  void Take(ByteView command) {
    const std::uint32_t number = command.Word(0);
    switch (number) {
      case macho::kSegment:
        return TakeSegment(command);
      case macho::kSymbolTable:
        return TakeSymbolTable(command);
      case macho::kLoaderInfo:
      case macho::kLoaderInfo | macho::kRequired:
        return TakeLoaderInfo(command);
      case macho::kLoadLibrary:
      case macho::kLoadWeakLibrary:
      case macho::kReexportLibrary:
      case macho::kLazyLoadLibrary:
      case macho::kLoadUpwardLibrary:
        result_.libraries.push_back(Name(command));
        return;
      case macho::kOwnName:
        Demand(!ownName_, "it has two names of its own");
        ownName_ = true;
        Name(command);
        return;
      case macho::kInitialRoutine:
        throw FileFault("it has an initial routine, which is not supported");
      case macho::kSearchPath:
        return;
      default:
        Demand((number & macho::kRequired) == 0, "it needs a loader that knows load command " +
                                                     std::to_string(number & ~macho::kRequired));
    }
  }

  // Of a library: the command's third word is the text's offset within it.
  static std::string Name(ByteView command) {
    const std::uint32_t offset = command.Word(8);
    Demand(offset >= 24 && offset < command.Size(), "it has a library's name outside its command");
    const std::size_t room = command.Size() - offset;
    std::string name = command.PaddedText(offset, room);
    Demand(name.size() < room, "it has a library's name without an end");
    return name;
  }

  void TakeSymbolTable(ByteView command) {
    Demand(!symbolTable_, "it has two symbol tables");
    symbolTable_ = true;
    file_.Part(command.Word(8), std::uint64_t{command.Word(12)} * 12, "symbols");
    file_.Part(command.Word(16), command.Word(20), "symbols' names");
  }

  void TakeLoaderInfo(ByteView command) {
    Demand(!loaderInfo_, "it has compressed loader information twice");
    loaderInfo_ = true;
    const auto part = [&](std::uint32_t offset, const char* name) {
      return file_.Part(command.Word(offset), command.Word(offset + 4), name);
    };
    result_.rebase = part(8, "rebase instructions");
    result_.bind = part(16, "bind instructions");
    result_.weakBind = part(24, "weak bind instructions");
    result_.lazyBind = part(32, "lazy bind instructions");
    result_.exports = part(40, "exported symbols");
  }

  void TakeSegment(ByteView command) {
    Demand(command.Size() >= macho::kSegmentBytes, "it has a segment command of a wrong size");
    MachoSegment segment;
    segment.name = command.PaddedText(8, macho::kNameBytes);
    segment.address = command.Word(24);
    segment.size = command.Word(28);
    segment.fileOffset = command.Word(32);
    segment.content = file_.Part(segment.fileOffset, command.Word(36), "segment's bytes");
    segment.protection = command.Word(44);
    const std::uint32_t sections = command.Word(48), flags = command.Word(52);
    Demand(command.Size() == macho::kSegmentBytes + std::uint64_t{sections} * macho::kSectionBytes,
           "it has a segment command of a wrong size");
    Demand(segment.content.Size() <= segment.size, "it has a segment larger in the file");
    Demand(segment.address % kPage == 0, "it has a segment that starts within a page");
    Demand(segment.size <= UINT32_MAX - segment.address - (kPage - 1),
           "it has a segment beyond 32 bits");
    Demand((segment.protection & ~(macho::kReadable | macho::kWritable | macho::kCode)) == 0,
           "it has a segment of unknown protection");
    Demand((flags & macho::kEncryptedSegment) == 0, "it has an encrypted segment");
    if ((flags & macho::kReadOnlySegment) != 0) segment.protection &= ~macho::kWritable;
    result_.segments.push_back(segment);
    for (std::uint32_t i = 0; i < sections; ++i) {
      TakeSection(command.Part(macho::kSegmentBytes + std::uint64_t{i} * macho::kSectionBytes,
                               macho::kSectionBytes, "section's bytes"));
    }
  }

  void TakeSection(ByteView entry) {
    MachoSection section;
    section.name = entry.PaddedText(0, macho::kNameBytes);
    section.address = entry.Word(32);
    section.size = entry.Word(36);
    section.type = entry.Byte(56);
    Demand(section.type < macho::kFirstThreadLocal || section.type > macho::kLastThreadLocal,
           "it has thread-local variables, which are not supported");
    if (section.size == 0) return;
    const MachoSegment& segment = result_.segments.back();
    const std::uint32_t within = section.address - segment.address;
    Demand(section.address >= segment.address && within <= segment.size &&
               section.size <= segment.size - within,
           "it has a section outside its segment");
    if (section.type != macho::kZeroFilled && section.type != macho::kLargeZeroFilled) {
      Demand(entry.Word(40) - segment.fileOffset == within &&
                 within + std::uint64_t{section.size} <= segment.content.Size(),
             "it has a section whose bytes are not its segment's");
    }
    result_.sections.push_back(section);
  }

  // Where all segments lie, once all are known.
  void Arrange(std::uint32_t headerBytes) {
    std::vector<const MachoSegment*> order;
    for (const MachoSegment& segment : result_.segments) {
      if (segment.size != 0) order.push_back(&segment);
    }
    std::sort(order.begin(), order.end(),
              [](const auto* a, const auto* b) { return a->address < b->address; });
    Demand(!order.empty(), "it has no segments");
    const MachoSegment* header = nullptr;
    std::uint32_t end = order.front()->address;
    for (const MachoSegment* segment : order) {
      Demand(segment->address >= end, "it has segments that overlap");
      end = (segment->address + segment->size + kPage - 1) / kPage * kPage;
      const bool holdsHeader = segment->fileOffset == 0 && segment->content.Size() >= headerBytes;
      if (holdsHeader && header == nullptr) header = segment;
    }
    Demand(header != nullptr, "no segment holds its load commands");
    result_.headerAddress = header->address;
    result_.lowest = order.front()->address;
    result_.span = end - result_.lowest;
    Demand(result_.span <= kLargestSpan, "it spans too much memory");
  }

  ByteView file_;
  MachoFile result_;
  bool symbolTable_ = false, loaderInfo_ = false, ownName_ = false;
};

}  // namespace

bool LooksLikeMacho(ByteView start) {
  const std::uint32_t magic = start.Word(0);
  return magic == macho::kMagic || magic == macho::kMagic64 || magic == macho::kMagicOtherEndian ||
         magic == macho::kMagic64OtherEndian || start.BigEndianWord(0) == macho::kUniversalMagic;
}

const MachoSegment* MachoFile::Holding(std::uint32_t address, std::uint32_t size) const {
  for (const MachoSegment& segment : segments) {
    if (address < segment.address) continue;
    const std::uint32_t within = address - segment.address;
    if (within <= segment.size && size <= segment.size - within) return &segment;
  }
  return nullptr;
}

MachoFile ParseMacho(ByteView bytes) { return Parser(IntelPart(bytes)).Parse(); }

}  // namespace host
