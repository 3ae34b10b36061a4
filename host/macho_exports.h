// The symbols that a Mach-O library exports: a tree of name parts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/byte_view.h"

namespace host {

// Each node starts with the size of its own entry (0: no name ends here), flags and offset from the
// header; then the number of children and, for each, a part of the name and the child's offset.
class MachoExports {
 public:
  // Throws FileFault when a node is damaged or reached twice.
  explicit MachoExports(ByteView tree);

  // The symbol's place as an offset from the header; none when the name is not exported or is not
  // simply that of a place in the library itself.
  std::optional<std::uint32_t> Find(const std::string& name) const;

 private:
  ByteView tree_;
};

}  // namespace host
