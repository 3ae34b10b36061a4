// Properties of exception objects.
#include "host/text.h"

namespace host {

bool RuntimeException::SetInteger(const std::string& property, int value) {
  if (!SameName(property, "ErrorNumber")) return false;
  errorNumber = value;
  return true;
}

bool RuntimeException::SetString(const std::string& property, Object* text) {
  if (!SameName(property, "Message")) return false;
  const auto* asText = dynamic_cast<const Text*>(text);
  hasMessage = asText != nullptr;
  message = hasMessage ? asText->Bytes() : std::string();
  return true;
}

}  // namespace host
