#include "host/shared_object.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

// The loader's message, on one line.
std::runtime_error LoaderError(const std::string& path) {
  const char* said = dlerror();
  std::string message = said == nullptr ? "cannot be loaded" : said;
  std::replace(message.begin(), message.end(), '\n', ' ');
  const bool namesPath = message.find(path) != std::string::npos;
  return std::runtime_error(namesPath ? message : path + ": " + message);
}

struct Search {
  const link_map* map;
  std::vector<MemoryRange> found;
};

// The writable segments count less what the loader makes read-only once it has relocated them.
int Collect(dl_phdr_info* info, std::size_t, void* data) {
  auto& search = *static_cast<Search*>(data);
  if (info->dlpi_addr != search.map->l_addr || info->dlpi_name != std::string(search.map->l_name)) {
    return 0;
  }
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  std::uintptr_t protectedEnd = 0;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_GNU_RELRO) continue;
    protectedEnd = (info->dlpi_addr + header.p_vaddr + header.p_memsz) / page * page;
  }
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_LOAD) continue;
    const std::uintptr_t first = info->dlpi_addr + header.p_vaddr;
    const std::uintptr_t last = first + header.p_memsz;
    const bool writable = (header.p_flags & PF_W) != 0;
    const std::uintptr_t middle = writable ? std::clamp(protectedEnd, first, last) : last;
    if (first < middle) search.found.push_back({first, middle, false});
    if (middle < last) search.found.push_back({middle, last, true});
  }
  return 1;
}

}  // namespace

SharedObject::SharedObject(const std::string& path)
    // A bare file name would be looked for in the system's folders.
    : handle_(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw LoaderError(path);
}

SharedObject::~SharedObject() { dlclose(handle_); }

void* SharedObject::Find(const std::string& name) const { return dlsym(handle_, name.c_str()); }

std::vector<MemoryRange> SharedObject::Ranges() const {
  Search search{nullptr, {}};
  if (dlinfo(handle_, RTLD_DI_LINKMAP, &search.map) != 0) return {};
  dl_iterate_phdr(Collect, &search);
  return std::move(search.found);
}

}  // namespace host
