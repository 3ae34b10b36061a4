// The manual page of the tool, picturehost(1).
#pragma once

#include <string>

#include "tool/option_table.h"

namespace tool {

// In the macros of man(7), ASCII alone, without a date. `tool` is the whole command line with all
// its commands; the sections "Examples" of all of them become one, and its own titled sections come
// after it.
std::string ManualPage(const CommandEntry& tool, const std::string& version);

}  // namespace tool
