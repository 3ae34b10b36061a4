#include "plugin/zeroed_block.h"

#include <cstddef>
#include <cstring>

void* AllocateZeroed(std::uint64_t bytes) {
  if (bytes < 1 || bytes > 0x7FFFFFFF) return nullptr;
  return std::calloc(1, static_cast<std::size_t>(bytes));
}

char* CopyText(const char* text) {
  const std::size_t length = std::strlen(text);
  char* copy = static_cast<char*>(AllocateZeroed(std::uint64_t{length} + 1));
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): the block is zero where the text ends.
  if (copy != nullptr) std::memcpy(copy, text, length);
  return copy;
}
