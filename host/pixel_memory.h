// Pixel memory that faults one byte past its end or before its start.
#pragma once

#include <cstddef>

namespace host {

enum class Guard {
  kNone,    // plain memory
  kAfter,   // the last byte is flush against an inaccessible page
  kBefore,  // the first byte is
};

// Owns zero-filled memory. Movable only.
class PixelMemory {
 public:
  PixelMemory() = default;
  PixelMemory(std::size_t bytes, Guard guard);  // throws std::bad_alloc
  ~PixelMemory();
  PixelMemory(PixelMemory&& other) noexcept;
  PixelMemory& operator=(PixelMemory&& other) noexcept;

  unsigned char* Data() const { return data_; }
  std::size_t Size() const { return size_; }

  // Every later access faults; the addresses are not given out again while this object lives.
  void MakeInaccessible();

 private:
  unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
  void* mapping_ = nullptr;
  std::size_t mappingSize_ = 0;
};

}  // namespace host
