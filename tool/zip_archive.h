// Reads a zip archive that is in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct ZipEntry {
  std::string name;  // with "/" between folders, as stored
  std::uint16_t method = 0;
  std::uint32_t crc = 0;
  std::size_t packedSize = 0;  // bytes
  std::size_t size = 0;        // bytes, once unpacked
  std::size_t offset = 0;      // of the entry's own header
};

class ZipArchive {
 public:
  // Throws std::runtime_error with a few words that tell what is wrong with the bytes. Archives in
  // several parts and of 4 GiB and more are refused.
  explicit ZipArchive(std::vector<unsigned char> bytes);

  const std::vector<ZipEntry>& Entries() const { return entries_; }

  // An entry's contents, stored or deflated, with their checksum verified. Throws
  // std::runtime_error like the constructor, also for entries above 64 MiB.
  std::vector<unsigned char> Read(const ZipEntry& entry) const;

 private:
  std::vector<unsigned char> bytes_;
  std::vector<ZipEntry> entries_;
};

}  // namespace tool
