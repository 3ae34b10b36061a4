// Texts in JSON.
#pragma once

#include <string>

namespace tool {

// The text quoted, with escapes; what is not UTF-8 becomes U+FFFD.
std::string JsonText(const std::string& text);

}  // namespace tool
