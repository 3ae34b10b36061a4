// Builds a short text in place and drops what does not fit.
#pragma once

#include <cstddef>
#include <cstring>

template <std::size_t Capacity>
class TextBuilder {
 public:
  // The text grows to at most `longest` bytes, not counting the terminating zero; longest <
  // Capacity.
  explicit TextBuilder(std::size_t longest) : longest_(longest) {}

  TextBuilder& Append(const char* text) { return Append(text, std::strlen(text)); }
  TextBuilder& Append(const char* text, std::size_t length) {
    const std::size_t room = longest_ - length_;
    const std::size_t count = length < room ? length : room;
    std::memcpy(text_ + length_, text, count);
    length_ += count;
    return *this;
  }

  const char* Text() const { return text_; }

 private:
  std::size_t longest_;
  std::size_t length_ = 0;
  char text_[Capacity] = {};
};
