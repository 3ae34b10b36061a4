#include "plugin/declarations.h"

#include <cstddef>
#include <cstring>

#include "plugin/text_builder.h"
#include "plugin/zeroed_block.h"

namespace {

constexpr std::size_t kBufferSize = 1000;
constexpr std::size_t kLongestInsert = 998;  // of texts with something inserted

using DeclarationBuilder = TextBuilder<kBufferSize>;

// Where the first of `characters` stands, within the part of the text that the buffer can hold;
// null if nowhere.
const char* FindFirst(const char* text, const char* characters) {
  const std::size_t position = std::strcspn(text, characters);
  return position <= kLongestInsert && text[position] != '\0' ? text + position : nullptr;
}

std::size_t Distance(const char* from, const char* to) {
  return static_cast<std::size_t>(to - from);
}

}  // namespace

char* AddClassParameter(const char* declaration, const char* className) {
  const char* place = FindFirst(declaration, "( ");
  if (place == nullptr) {
    DeclarationBuilder whole(kBufferSize - 1);
    whole.Append(declaration).Append("(extends ref as ").Append(className).Append(")");
    return CopyText(whole.Text());
  }
  DeclarationBuilder extended(kLongestInsert);
  extended.Append(declaration, Distance(declaration, place));
  extended.Append("(extends ref as ").Append(className);
  if (*place == '(') {
    extended.Append(", ").Append(place + 1);
  } else {
    extended.Append(")").Append(place);
  }
  return CopyText(extended.Text());
}

char* AddAssignsParameter(const char* extendedDeclaration) {
  DeclarationBuilder setter(kLongestInsert);
  if (const char* close = FindFirst(extendedDeclaration, ")")) {
    setter.Append(extendedDeclaration, Distance(extendedDeclaration, close));
    setter.Append(", assigns value").Append(close + 1).Append(")");
  } else if (const char* blank = FindFirst(extendedDeclaration, " ")) {
    setter.Append(extendedDeclaration, Distance(extendedDeclaration, blank));
    setter.Append("(assigns value").Append(blank).Append(")");
  } else {
    return nullptr;
  }
  return CopyText(setter.Text());
}
