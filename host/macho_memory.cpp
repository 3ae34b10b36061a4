#include "host/macho_memory.h"

#include <sys/mman.h>

#include <cstring>
#include <string>

#include "host/macho_format.h"

namespace host {

namespace {

int SystemProtection(std::uint32_t protection) {
  return ((protection & macho::kReadable) != 0 ? PROT_READ : 0) |
         ((protection & macho::kWritable) != 0 ? PROT_WRITE : 0) |
         ((protection & macho::kCode) != 0 ? PROT_EXEC : 0);
}

}  // namespace

MachoMemory::MachoMemory(const MachoFile& file) : lowest_(file.lowest), span_(file.span) {
  constexpr int kOwnBits = sizeof(void*) * 8;
  if (kOwnBits != 32) {
    throw FileFault("a 32-bit Intel macOS library, but this program is " +
                    std::to_string(kOwnBits) + "-bit");
  }
  const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  void* start = mmap(nullptr, span_, PROT_READ | PROT_WRITE, flags, -1, 0);
  if (start == MAP_FAILED) throw FileFault("there is no room for it in memory");
  start_ = static_cast<std::uint8_t*>(start);
  for (const MachoSegment& segment : file.segments) {
    if (segment.content.Size() == 0) continue;
    std::memcpy(At(segment.address), segment.content.Data(), segment.content.Size());
  }
}

MachoMemory::~MachoMemory() { munmap(start_, span_); }

void MachoMemory::Protect(const MachoFile& file) {
  // What no segment covers is nobody's.
  bool done = mprotect(start_, span_, PROT_NONE) == 0;
  for (const MachoSegment& segment : file.segments) {
    if (segment.size == 0) continue;
    const int protection = SystemProtection(segment.protection);
    done = mprotect(At(segment.address), segment.size, protection) == 0 && done;
  }
  if (!done) throw FileFault("its memory cannot be protected");
}

std::uint32_t MachoMemory::Moved() const {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(start_)) - lowest_;
}

std::uint32_t MachoMemory::Word(std::uint32_t linked) const {
  std::uint32_t value = 0;
  std::memcpy(&value, At(linked), sizeof value);
  return value;
}

void MachoMemory::SetWord(std::uint32_t linked, std::uint32_t value) const {
  std::memcpy(At(linked), &value, sizeof value);
}

}  // namespace host
