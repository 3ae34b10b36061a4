// Bytes of a file that nobody trusts: every read is checked against their end. Little endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace host {

// What is wrong with a file, as the end of a sentence that starts with its path. One line, also
// when a name from the file, which may hold anything, is in it.
class FileFault : public std::runtime_error {
 public:
  explicit FileFault(const std::string& fault);
};

// Somebody else's bytes. Reads beyond them throw FileFault.
class ByteView {
 public:
  ByteView() = default;
  // `name` says in messages whose bytes these are; it must outlive the view, as the bytes must.
  ByteView(const std::uint8_t* data, std::size_t size, const char* name)
      : data_(data), size_(size), name_(name) {}

  std::size_t Size() const { return size_; }
  const std::uint8_t* Data() const { return data_; }
  const char* Name() const { return name_; }

  std::uint8_t Byte(std::uint64_t offset) const;
  std::uint32_t Word(std::uint64_t offset) const;           // 32 bits
  std::uint32_t BigEndianWord(std::uint64_t offset) const;  // 32 bits
  // Up to a zero byte, or all of `limit` bytes when there is none.
  std::string PaddedText(std::uint64_t offset, std::size_t limit) const;
  ByteView Part(std::uint64_t offset, std::uint64_t size, const char* name) const;

 private:
  void Check(std::uint64_t offset, std::uint64_t size) const;

  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  const char* name_ = "";
};

// Reads one thing after another.
class ByteCursor {
 public:
  explicit ByteCursor(ByteView bytes, std::size_t offset = 0) : bytes_(bytes), offset_(offset) {}

  std::size_t Offset() const { return offset_; }
  bool AtEnd() const { return offset_ >= bytes_.Size(); }

  std::uint8_t Byte();
  std::uint32_t Word();
  void Skip(std::uint64_t bytes);
  std::uint64_t Uleb();  // at most 64 bits
  std::int64_t Sleb();   // at most 64 bits
  std::string Text();    // ended by a zero byte

 private:
  ByteView bytes_;
  std::size_t offset_;
};

}  // namespace host
