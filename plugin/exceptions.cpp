#include "plugin/exceptions.h"

#include <cstring>

#include "plugin/held_object.h"
#include "plugin/strings.h"

namespace {

REALobject NewException(const char* className) {
  if (REALobject exception = REALnewInstance(className)) return exception;
  return REALnewInstance("RuntimeException");
}

REALstring NewMessage(const char* message) {
  if (message == nullptr) return nullptr;
  const auto length = static_cast<std::int64_t>(std::strlen(message));
  return REALBuildUnicodeString(message, length, kEncodingAscii);
}

}  // namespace

void RaiseException(const char* className, const char* message, std::size_t /*length*/,
                    std::int32_t /*errorNumber*/) {
  const HeldString text(NewMessage(message));
  const HeldObject exception(NewException(className));
  if (exception.Get() == nullptr) return;
  REALSetPropValueString(exception.Get(), "Message", text.Get());
  REALSetPropValueInteger(exception.Get(), "ErrorNumber", 0);
  REALRaiseException(exception.Get());
}
