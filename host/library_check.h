// Tells why a file cannot be loaded as a library, in words clearer than the loader's.
#pragma once

#include <string>

namespace host {

// One line; empty when nothing in the file's first bytes speaks against loading it. About a macOS
// file (Mach-O) they say nothing: what loads it looks at all of it.
std::string WhyNotLoadable(const std::string& path);

// Whether the first bytes are those of a macOS file, of whatever kind.
bool IsMachoFile(const std::string& path);

}  // namespace host
