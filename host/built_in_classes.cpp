// The classes an application has.
#include <algorithm>
#include <iterator>

#include "host/runtime.h"

namespace host {

namespace {

constexpr const char* kCommonClasses[] = {"Picture",
                                          "Graphics",
                                          "String",
                                          "RuntimeException",
                                          "NilObjectException",
                                          "OutOfMemoryException",
                                          "OutOfBoundsException",
                                          "IllegalCastException"};

const char* ApplicationClass(ApplicationKind kind) {
  switch (kind) {
    case ApplicationKind::kDesktop:
      return "Application";
    case ApplicationKind::kWeb:
      return "WebApplication";
    case ApplicationKind::kConsole:
      return "ConsoleApplication";
    case ApplicationKind::kNone:
      break;
  }
  return "";
}

}  // namespace

bool Runtime::HasClass(const std::string& className) const {
  if (className.empty() || removedClasses_.contains(className)) return false;
  return className == ApplicationClass(options_.kind) ||
         std::find(std::begin(kCommonClasses), std::end(kCommonClasses), className) !=
             std::end(kCommonClasses);
}

}  // namespace host
