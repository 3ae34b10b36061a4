// The one source of the plug-in's own memory: zero-filled, tested, and bounded by one size rule.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <utility>

// Zero-filled memory that `free` gives back, or null: for 0 bytes, for more than 2^31 - 1, and when
// there is none. Sizes are formed in 64 bits, so that none wraps into a small block.
void* AllocateZeroed(std::uint64_t bytes);

// A NUL-terminated copy that `free` gives back, or null.
char* CopyText(const char* text);

// A working block of T that lives for one scope.
template <typename T>
class ZeroedBlock {
 public:
  ZeroedBlock() = default;
  explicit ZeroedBlock(std::uint64_t bytes) : data_(static_cast<T*>(AllocateZeroed(bytes))) {}
  ~ZeroedBlock() { std::free(data_); }
  ZeroedBlock(ZeroedBlock&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
  ZeroedBlock& operator=(ZeroedBlock&& other) noexcept {
    std::swap(data_, other.data_);
    return *this;
  }

  explicit operator bool() const { return data_ != nullptr; }
  T* Data() const { return data_; }
  template <typename Index>
  T& operator[](Index index) const {
    return data_[index];
  }

 private:
  T* data_ = nullptr;
};
