// Pixel memory that faults one byte past its end or before its start.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

enum class Guard {
  kNone,    // plain memory
  kAfter,   // the last byte is flush against an inaccessible page
  kBefore,  // the first byte is
};

// Owns zero-filled memory. Movable only. Data() is aligned to 16 bytes, except with kAfter, where
// it is as aligned as the size is.
class PixelMemory {
 public:
  PixelMemory() = default;
  PixelMemory(std::size_t bytes, Guard guard);  // throws std::bad_alloc
  ~PixelMemory();
  PixelMemory(PixelMemory&& other) noexcept;
  PixelMemory& operator=(PixelMemory&& other) noexcept;

  unsigned char* Data() const { return data_; }
  std::size_t Size() const { return size_; }

  // Every later access faults; the addresses are not given out again while this object lives. (In a
  // process that has made very much memory inaccessible, the oldest addresses are free again.)
  // Throws std::bad_alloc when the system refuses.
  void MakeInaccessible();

 private:
  void Unmap();

  unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
  void* mapping_ = nullptr;
  std::size_t mappingSize_ = 0;
  std::uint64_t reservation_ = 0;  // non-zero once inaccessible
};

}  // namespace host
