#include "tests/torture/plugin_image.h"

#include <stdexcept>
#include <utility>

namespace torture {

namespace {

// Word by word, because a sanitizer's own copying would object to the gaps between variables.
__attribute__((no_sanitize("address", "undefined"))) void CopyWords(
    volatile std::uintptr_t* to, const volatile std::uintptr_t* from, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}

}  // namespace

PluginImage::PluginImage(const host::LoadedFile& plugin) {
  const std::vector<host::MemoryRange> ranges = plugin.WritableRanges();
  if (ranges.empty()) throw std::runtime_error("the plug-in has no variables");
  for (const host::MemoryRange& range : ranges) {
    const std::uintptr_t first = (range.first + sizeof(std::uintptr_t) - 1) &
                                 ~(static_cast<std::uintptr_t>(sizeof(std::uintptr_t)) - 1);
    Part part{reinterpret_cast<std::uintptr_t*>(first), {}};
    part.words.resize((range.last - first) / sizeof(std::uintptr_t));
    CopyWords(part.words.data(), part.place, part.words.size());
    parts_.push_back(std::move(part));
  }
}

void PluginImage::Restore() const {
  for (const Part& part : parts_) CopyWords(part.place, part.words.data(), part.words.size());
}

}  // namespace torture
