#include "tool/json_text.h"

#include <cstdio>

namespace tool {

std::string JsonText(const std::string& text) {
  std::string quoted = "\"";
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    char escape[8];
    if (byte == '"' || byte == '\\') {
      quoted += {'\\', text[i]};
    } else if (byte < 0x20 || byte == 0x7F) {
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
      quoted += escape;
    } else if (byte < 0x80) {
      quoted += text[i];
    } else {
      const std::size_t more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
      bool valid = byte >= 0xC2 && byte <= 0xF4 && i + more < text.size();
      for (std::size_t k = 1; valid && k <= more; ++k) {
        valid = (static_cast<unsigned char>(text[i + k]) & 0xC0) == 0x80;
      }
      quoted += valid ? text.substr(i, more + 1) : "\\ufffd";
      if (valid) i += more;
    }
  }
  return quoted + "\"";
}

}  // namespace tool
