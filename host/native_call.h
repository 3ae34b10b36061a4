// Calls of routines of any shape by the machine's C calling convention.
#pragma once

#include <cstdint>
#include <vector>

#include "host/declaration.h"
#include "plugin/host_interface.h"

namespace host {

// A double or a Boolean result is asked for by type; Type::kPicture gives the raw handle.
struct NativeResult {
  std::uintptr_t word = 0;  // of a Boolean: 0 or 1, of which only the low byte was looked at
  double number = 0;
};
struct NativeArgument {
  bool isDouble = false;
  std::uintptr_t word = 0;  // as it stands in its register or slot, unused bits included
  double number = 0;
};

// Calls any routine by the machine's C calling convention with integers, doubles and pointers.
// Throws std::invalid_argument for arguments of more than 24 words (on i386; beyond the registers
// on x86-64); what the routine throws passes out.
NativeResult CallNative(REALroutine routine, const std::vector<NativeArgument>& arguments,
                        Type result);

}  // namespace host
