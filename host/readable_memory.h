// Tells whether memory may be read, without reading it: for addresses that a plug-in hands over.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace host {

bool IsReadable(const void* address, std::size_t bytes);

// The NUL-terminated text at an address; no value when it cannot be read or is longer than `limit`.
std::optional<std::string> ReadableText(const char* text, std::size_t limit = 4096);

}  // namespace host
