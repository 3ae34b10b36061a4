#include "host/loaded_file.h"

#include <algorithm>
#include <stdexcept>

#include "host/library_check.h"
#include "host/macho_image.h"
#include "host/shared_object.h"

namespace host {

bool LoadedFile::Contains(std::uintptr_t address) const {
  const std::vector<MemoryRange> ranges = Ranges();
  return std::any_of(ranges.begin(), ranges.end(), [&](const MemoryRange& range) {
    return address >= range.first && address < range.last;
  });
}

std::vector<MemoryRange> LoadedFile::WritableRanges() const {
  std::vector<MemoryRange> ranges = Ranges();
  std::erase_if(ranges, [](const MemoryRange& range) { return !range.writable; });
  return ranges;
}

std::shared_ptr<LoadedFile> LoadFile(const std::string& path) {
  const std::string why = WhyNotLoadable(path);
  if (!why.empty()) throw std::runtime_error(why);
  if (IsMachoFile(path)) return LoadMachoFile(path);
  return std::make_shared<SharedObject>(path);
}

}  // namespace host
