// Register numbers in the tables that tell how to leave a function's frame. On macOS for 32-bit
// Intel the stack pointer is register 5 and the frame pointer 4 there; here it is the other way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace host {

// Exchanges registers 4 and 5 in the call frame instructions at [first, last) of `bytes`, and in
// the expressions within them; nothing changes its size. Throws FileFault for an instruction that
// is unknown, does not end, restores what was not remembered or names a register that no frame
// keeps.
//
// takePointer  is called with the place of each code address among the instructions (four bytes).
void ExchangeStackRegisters(std::vector<std::uint8_t>& bytes, std::size_t first, std::size_t last,
                            const std::function<void(std::size_t)>& takePointer);

}  // namespace host
