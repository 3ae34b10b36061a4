// Pixel memory from mmap, between pages without any access.
#include "host/pixel_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <limits>
#include <map>
#include <new>
#include <utility>

namespace host {

namespace {

std::size_t PageSize() {
  static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

// Address ranges kept out of use because released pixels lay there; the oldest are given back when
// they take up too much of the address space.
class Reservations {
 public:
  static Reservations& Instance() {
    static Reservations& instance = *new Reservations;
    return instance;
  }

  std::uint64_t Add(void* mapping, std::size_t size) {
    ranges_[++last_] = {mapping, size};
    total_ += size;
    while (total_ > kMostBytes && ranges_.size() > 1) Remove(ranges_.begin()->first);
    return last_;
  }

  void Remove(std::uint64_t number) {
    const auto range = ranges_.find(number);
    if (range == ranges_.end()) return;
    munmap(range->second.first, range->second.second);
    total_ -= range->second.second;
    ranges_.erase(range);
  }

 private:
  static constexpr std::size_t kMostBytes =
      sizeof(void*) == 4 ? std::size_t{256} << 20 : std::numeric_limits<std::size_t>::max() >> 20;
  std::map<std::uint64_t, std::pair<void*, std::size_t>> ranges_;
  std::uint64_t last_ = 0;
  std::size_t total_ = 0;
};

}  // namespace

PixelMemory::PixelMemory(std::size_t bytes, Guard guard) : size_(bytes) {
  const std::size_t page = PageSize();
  if (bytes > std::numeric_limits<std::size_t>::max() / 2) throw std::bad_alloc();
  const std::size_t inner = (bytes + page - 1) / page * page;
  mappingSize_ = inner + 2 * page;
  mapping_ =
      mmap(nullptr, mappingSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping_ == MAP_FAILED) {
    mapping_ = nullptr;
    throw std::bad_alloc();
  }
  unsigned char* first = static_cast<unsigned char*>(mapping_) + page;
  if (inner > 0 && mprotect(first, inner, PROT_READ | PROT_WRITE) != 0) {
    munmap(mapping_, mappingSize_);
    throw std::bad_alloc();
  }
  data_ = guard == Guard::kAfter ? first + (inner - bytes) : first;
}

PixelMemory::~PixelMemory() { Unmap(); }

PixelMemory::PixelMemory(PixelMemory&& other) noexcept { *this = std::move(other); }

PixelMemory& PixelMemory::operator=(PixelMemory&& other) noexcept {
  if (this == &other) return *this;
  Unmap();
  data_ = std::exchange(other.data_, nullptr);
  size_ = std::exchange(other.size_, 0);
  mapping_ = std::exchange(other.mapping_, nullptr);
  mappingSize_ = std::exchange(other.mappingSize_, 0);
  reservation_ = std::exchange(other.reservation_, 0);
  return *this;
}

void PixelMemory::MakeInaccessible() {
  if (mapping_ == nullptr || reservation_ != 0) return;
  // A fresh mapping over the old one gives the pages back to the system as well.
  if (mmap(mapping_, mappingSize_, PROT_NONE,
           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) == MAP_FAILED) {
    throw std::bad_alloc();
  }
  reservation_ = Reservations::Instance().Add(mapping_, mappingSize_);
}

void PixelMemory::Unmap() {
  if (mapping_ == nullptr) return;
  if (reservation_ != 0) {
    Reservations::Instance().Remove(reservation_);
  } else {
    munmap(mapping_, mappingSize_);
  }
  mapping_ = nullptr;
}

}  // namespace host
