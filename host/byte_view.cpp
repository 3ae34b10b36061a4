#include "host/byte_view.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
  return text;
}

}  // namespace

FileFault::FileFault(const std::string& fault) : std::runtime_error(OneLine(fault)) {}

void ByteView::Check(std::uint64_t offset, std::uint64_t size) const {
  if (offset > size_ || size > size_ - offset) {
    throw FileFault(std::string("its ") + name_ + " end too early");
  }
}

std::uint8_t ByteView::Byte(std::uint64_t offset) const {
  Check(offset, 1);
  return data_[offset];
}

std::uint32_t ByteView::Word(std::uint64_t offset) const {
  Check(offset, sizeof(std::uint32_t));
  std::uint32_t word = 0;
  std::memcpy(&word, data_ + offset, sizeof word);
  return word;
}

std::uint32_t ByteView::BigEndianWord(std::uint64_t offset) const {
  return __builtin_bswap32(Word(offset));
}

std::string ByteView::PaddedText(std::uint64_t offset, std::size_t limit) const {
  Check(offset, limit);
  const char* text = reinterpret_cast<const char*>(data_ + offset);
  return std::string(text, strnlen(text, limit));
}

ByteView ByteView::Part(std::uint64_t offset, std::uint64_t size, const char* name) const {
  if (offset > size_ || size > size_ - offset) {
    throw FileFault(std::string("its ") + name + " lie outside of it");
  }
  return {data_ + offset, static_cast<std::size_t>(size), name};
}

std::uint8_t ByteCursor::Byte() { return bytes_.Byte(offset_++); }

std::uint32_t ByteCursor::Word() {
  const std::uint32_t word = bytes_.Word(offset_);
  offset_ += sizeof word;
  return word;
}

void ByteCursor::Skip(std::uint64_t bytes) {
  offset_ += bytes_.Part(offset_, bytes, bytes_.Name()).Size();
}

std::uint64_t ByteCursor::Uleb() {
  std::uint64_t value = 0;
  for (unsigned shift = 0;; shift += 7) {
    const std::uint8_t byte = Byte();
    const std::uint64_t bits = byte & 0x7Fu;
    if (shift > 63 || (shift == 63 && bits > 1)) {
      throw FileFault(std::string("its ") + bytes_.Name() + " hold a number of more than 64 bits");
    }
    value |= bits << shift;
    if ((byte & 0x80) == 0) return value;
  }
}

std::int64_t ByteCursor::Sleb() {
  std::uint64_t value = 0;
  for (unsigned shift = 0;;) {
    const std::uint8_t byte = Byte();
    const std::uint64_t bits = byte & 0x7Fu;
    if (shift > 63 || (shift == 63 && bits != 0 && bits != 0x7F)) {
      throw FileFault(std::string("its ") + bytes_.Name() + " hold a number of more than 64 bits");
    }
    value |= bits << shift;
    shift += 7;
    if ((byte & 0x80) != 0) continue;
    if ((byte & 0x40) != 0 && shift < 64) value |= ~std::uint64_t{0} << shift;
    return static_cast<std::int64_t>(value);
  }
}

std::string ByteCursor::Text() {
  std::string text;
  for (std::uint8_t byte = Byte(); byte != 0; byte = Byte()) text += static_cast<char>(byte);
  return text;
}

}  // namespace host
