// Takes a fuzzer's bytes apart into numbers and texts; gives zeros when they run out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace fuzz {

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::size_t Left() const { return size_; }
  std::uint8_t Byte() {
    std::uint8_t byte = 0;
    Copy(&byte, 1);
    return byte;
  }
  std::uint32_t Word() {
    std::uint32_t word = 0;
    Copy(&word, sizeof(word));
    return word;
  }
  double Number() {
    double number = 0;
    Copy(&number, sizeof(number));
    return number;
  }
  // A number in [low, high].
  int Between(int low, int high) {
    return low + static_cast<int>(Word() % static_cast<std::uint32_t>(high - low + 1));
  }
  bool Coin() { return (Byte() & 1) != 0; }
  // Up to the next zero byte, which is taken too.
  std::string Text() {
    std::string text;
    while (size_ > 0) {
      const auto byte = static_cast<char>(Byte());
      if (byte == '\0') break;
      text += byte;
    }
    return text;
  }
  std::string Rest() {
    std::string rest(reinterpret_cast<const char*>(data_), size_);
    size_ = 0;
    return rest;
  }

 private:
  void Copy(void* target, std::size_t wanted) {
    const std::size_t count = wanted < size_ ? wanted : size_;
    if (count > 0) std::memcpy(target, data_, count);
    data_ += count;
    size_ -= count;
  }

  const std::uint8_t* data_;
  std::size_t size_;
};

// Ends the run with a message when something is not as it must be.
inline void Require(bool holds, const std::string& message) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", message.c_str());
  std::abort();
}

}  // namespace fuzz
