#include "tool/zip_archive.h"

#include <stb/stb_image.h>

#include <algorithm>
#include <stdexcept>

namespace tool {
namespace {

constexpr std::size_t kEndSize = 22;      // end of the central directory, without its comment
constexpr std::size_t kCentralSize = 46;  // of a central header, without its name
constexpr std::size_t kLocalSize = 30;    // of an entry's own header, without its name
constexpr std::size_t kLargestEntry = std::size_t{64} << 20;

[[noreturn]] void Damaged() { throw std::runtime_error("a damaged zip archive"); }

// Little-endian numbers at checked places.
class Bytes {
 public:
  explicit Bytes(const std::vector<unsigned char>& bytes) : bytes_(bytes) {}

  std::uint32_t At(std::size_t place, int size) const {
    Require(place, static_cast<std::size_t>(size));
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i) {
      value |= std::uint32_t{bytes_[place + static_cast<std::size_t>(i)]} << 8 * i;
    }
    return value;
  }
  std::string Text(std::size_t place, std::size_t size) const {
    Require(place, size);
    return {bytes_.begin() + static_cast<std::ptrdiff_t>(place),
            bytes_.begin() + static_cast<std::ptrdiff_t>(place + size)};
  }
  void Require(std::size_t place, std::size_t size) const {
    if (place > bytes_.size() || size > bytes_.size() - place) Damaged();
  }

 private:
  const std::vector<unsigned char>& bytes_;
};

// The directory's end is followed by a comment of at most 65535 bytes.
std::size_t FindEnd(const std::vector<unsigned char>& bytes) {
  constexpr unsigned char kMark[] = {'P', 'K', 5, 6};
  if (bytes.size() >= kEndSize) {
    const std::size_t last = bytes.size() - kEndSize;
    for (std::size_t back = 0; back <= std::min<std::size_t>(last, 65535); ++back) {
      const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(last - back);
      if (std::equal(std::begin(kMark), std::end(kMark), place)) return last - back;
    }
  }
  throw std::runtime_error("no zip archive");
}

std::uint32_t ChecksumOf(const std::vector<unsigned char>& bytes) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const unsigned char byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

void Inflate(std::string packed, std::vector<unsigned char>& contents) {
  // The decoder takes its last symbol for cut off unless something follows, as it does in pictures.
  packed.append(8, '\0');
  const int size = stbi_zlib_decode_noheader_buffer(reinterpret_cast<char*>(contents.data()),
                                                    static_cast<int>(contents.size()),
                                                    packed.data(), static_cast<int>(packed.size()));
  if (size < 0 || static_cast<std::size_t>(size) != contents.size()) Damaged();
}

}  // namespace

ZipArchive::ZipArchive(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {
  const Bytes at(bytes_);
  const std::size_t end = FindEnd(bytes_);
  const std::uint32_t count = at.At(end + 10, 2);
  if (at.At(end + 4, 2) != 0 || at.At(end + 8, 2) != count || count == 0xFFFF) {
    throw std::runtime_error("a zip archive in several parts or of more than 4 GiB");
  }
  std::size_t place = at.At(end + 16, 4);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (at.At(place, 4) != 0x02014B50) Damaged();
    ZipEntry entry;
    entry.method = static_cast<std::uint16_t>(at.At(place + 10, 2));
    entry.crc = at.At(place + 16, 4);
    entry.packedSize = at.At(place + 20, 4);
    entry.size = at.At(place + 24, 4);
    entry.offset = at.At(place + 42, 4);
    const std::size_t nameSize = at.At(place + 28, 2);
    entry.name = at.Text(place + kCentralSize, nameSize);
    place += kCentralSize + nameSize + at.At(place + 30, 2) + at.At(place + 32, 2);
    entries_.push_back(std::move(entry));
  }
}

std::vector<unsigned char> ZipArchive::Read(const ZipEntry& entry) const {
  const Bytes at(bytes_);
  if (at.At(entry.offset, 4) != 0x04034B50) Damaged();
  const std::size_t first =
      entry.offset + kLocalSize + at.At(entry.offset + 26, 2) + at.At(entry.offset + 28, 2);
  if (entry.size > kLargestEntry) throw std::runtime_error("an entry is too large");
  std::vector<unsigned char> contents(entry.size);
  const std::string packed = at.Text(first, entry.packedSize);
  if (entry.method == 0) {
    if (entry.packedSize != entry.size) Damaged();
    std::copy_n(packed.begin(), entry.size, contents.begin());
  } else if (entry.method == 8) {
    Inflate(packed, contents);
  } else {
    throw std::runtime_error("an entry is packed in a way that is not known here");
  }
  if (ChecksumOf(contents) != entry.crc) Damaged();
  return contents;
}

}  // namespace tool
