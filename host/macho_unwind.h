// The tables of a Mach-O library by which exceptions leave its functions (`__eh_frame`), and their
// registration with this process.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/byte_view.h"

namespace host {

// Where the addresses in the tables may point to.
enum class FrameTarget {
  kCode,         // a function, with its size
  kPersonality,  // a routine, or the place of a pointer to one
  kHandlers,     // what the personality reads
};
struct FrameAddress {
  FrameTarget target;
  bool indirect;  // the place of a pointer
  std::uint32_t address;
  std::uint32_t size;  // of a function; otherwise what is read at the least
};

// A copy of tables in this system's register numbers, with an end; empty when they tell of no
// function. Distances to code and data are those from the copy, so it may be moved but not copied.
//
// tables   as they are in memory, at `address`, with all their addresses in place
// allow    is asked about every address in them
//
// Throws FileFault for tables that are damaged or hold what this process cannot use, an address
// that is not allowed among it.
std::vector<std::uint8_t> TranslateFrames(ByteView tables, std::uint32_t address,
                                          const std::function<bool(const FrameAddress&)>& allow);

// Tables of exceptions that the process knows while this lives.
class RegisteredFrames {
 public:
  explicit RegisteredFrames(std::vector<std::uint8_t> tables);  // translated
  ~RegisteredFrames();
  RegisteredFrames(const RegisteredFrames&) = delete;
  RegisteredFrames& operator=(const RegisteredFrames&) = delete;

 private:
  std::vector<std::uint8_t> tables_;
};

}  // namespace host
