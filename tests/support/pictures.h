// Host pictures made from plain images and read back as such, word for word.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/plugin_library.h"
#include "host/runtime.h"
#include "tests/oracles/image.h"

namespace support {

// A picture of that size, format and content. Everything else is as `spec` says; format 8
// makes a host buffer.
host::Picture* PictureOf(host::Runtime& runtime, const oracle::Image& image,
                         host::PictureSpec spec = {});

oracle::Image ImageOf(const host::Picture& picture);

// One row, or several of the same length, of pixel words.
oracle::Image Words(int format, const std::vector<std::vector<std::uint32_t>>& rows);

// Empty when equal; else the sizes, or the first pixel that differs, in words.
std::string Difference(const oracle::Image& expected, const oracle::Image& actual);

// The sentences of a report, for messages; empty when it is clean.
std::string Complaints(const host::CallReport& report);

// A clock that has moved on by a second whenever it is read, so that every yield point yields.
class RushingClock {
 public:
  RushingClock();
  ~RushingClock();
};

}  // namespace support
