#include "tool/html.h"

#include <cstdint>

#include "tool/picture_files.h"

namespace tool {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";

// How many bytes the character at `at` has in well-formed UTF-8; 0 for anything else.
std::size_t CharacterLength(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? std::uint32_t(static_cast<unsigned char>(text[i])) : 0u;
  };
  const std::uint32_t first = byte(at);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  std::uint32_t code = first & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(at + i) & 0x3F);
  }
  const std::uint32_t smallest[] = {0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  const bool sound = first >= 0xC0 && first < 0xF8 && code >= smallest[length - 2] &&
                     code <= 0x10FFFF && !surrogate;
  return sound ? length : 0;
}

std::string Base64(const std::vector<unsigned char>& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = std::uint32_t{bytes[i]} << 16;
    if (count > 1) group |= std::uint32_t{bytes[i + 1]} << 8;
    if (count > 2) group |= bytes[i + 2];
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? kDigits[group >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

}  // namespace

std::string EscapeHtml(const std::string& text) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = CharacterLength(text, i);
    const auto byte = static_cast<unsigned char>(text[i]);
    if (length == 0 || byte < 0x20 || byte == 0x7F) {
      escaped += kReplacement;
    } else if (byte == '&') {
      escaped += "&amp;";
    } else if (byte == '<') {
      escaped += "&lt;";
    } else if (byte == '>') {
      escaped += "&gt;";
    } else if (byte == '"') {
      escaped += "&quot;";
    } else {
      escaped += text.substr(i, length);
    }
    i += length == 0 ? 1 : length;
  }
  return escaped;
}

std::string DataUrl(const Bitmap& picture) {
  return "data:image/png;base64," + Base64(EncodePng(picture));
}

std::string ImageElement(const Bitmap& picture, const std::string& alternative, int zoom) {
  std::string kinds;
  if (zoom > 1) kinds += "magnified";
  if (picture.hasAlpha) kinds += kinds.empty() ? "clear" : " clear";
  return "<img" + (kinds.empty() ? "" : " class=\"" + kinds + "\"") + " width=\"" +
         std::to_string(picture.width * zoom) + "\" height=\"" +
         std::to_string(picture.height * zoom) + "\" alt=\"" + EscapeHtml(alternative) +
         "\" src=\"" + DataUrl(picture) + "\">\n";
}

}  // namespace tool
