// Tells why a file cannot be loaded as a library, in words clearer than the loader's.
#pragma once

#include <string>

namespace host {

// One line; empty when nothing speaks against loading the file.
std::string WhyNotLoadable(const std::string& path);

}  // namespace host
