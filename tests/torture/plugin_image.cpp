#include "tests/torture/plugin_image.h"

#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/support/plugin_under_test.h"

namespace torture {

namespace {

struct Range {
  std::uintptr_t first, last;
};

struct Search {
  std::string path;
  std::vector<Range> found;
};

// The writable segments, less what the loader makes read-only once it has relocated them.
int Collect(dl_phdr_info* info, std::size_t, void* data) {
  auto& search = *static_cast<Search*>(data);
  if (info->dlpi_name == nullptr || search.path != info->dlpi_name) return 0;
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  std::uintptr_t writable = 0;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_GNU_RELRO) continue;
    writable = (info->dlpi_addr + header.p_vaddr + header.p_memsz) / page * page;
  }
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_LOAD || (header.p_flags & PF_W) == 0) continue;
    const std::uintptr_t first = info->dlpi_addr + header.p_vaddr;
    const std::uintptr_t last = first + header.p_memsz;
    search.found.push_back({std::max(first, std::min(writable, last)), last});
  }
  return 1;
}

// Word by word, because a sanitizer's own copying would object to the gaps between variables.
__attribute__((no_sanitize("address", "undefined"))) void CopyWords(
    volatile std::uintptr_t* to, const volatile std::uintptr_t* from, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}

}  // namespace

PluginImage::PluginImage() {
  Search search{std::filesystem::absolute(support::PluginPath()).string(), {}};
  dl_iterate_phdr(Collect, &search);
  if (search.found.empty()) throw std::runtime_error("the plug-in is not loaded");
  for (const Range& range : search.found) {
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
