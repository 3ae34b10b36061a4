// What the process has for the symbols that a macOS library takes from other libraries.
#pragma once

#include <string>

namespace host {

// The address for a symbol as a Mach-O file names it; null when the process has none. Found are the
// functions and variables of the program and its libraries, by their names in C, and a few that
// only macOS has.
void* ProcessAddress(const std::string& symbol);

}  // namespace host
