// What an object without properties answers.
#include "host/object.h"

#include <algorithm>

namespace host {

bool Object::GetInteger(const std::string& /*property*/, int& /*value*/) const { return false; }
bool Object::GetBoolean(const std::string& /*property*/, bool& /*value*/) const { return false; }
bool Object::SetInteger(const std::string& /*property*/, int /*value*/) { return false; }
bool Object::SetString(const std::string& /*property*/, Object* /*text*/) { return false; }

bool SameName(const std::string& a, const std::string& b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace host
