#include "plugin/module_registration.h"

#include <cstddef>
#include <cstdlib>

#include "plugin/declarations.h"
#include "plugin/host_state.h"
#include "plugin/text_builder.h"
#include "plugin/wrappers.h"
#include "plugin/zeroed_block.h"

namespace {

constexpr std::uintptr_t kExtensionMethod = 16;

std::uintptr_t CountModuleMethods(const REALmethodDefinition* methods, std::uintptr_t count) {
  std::uintptr_t total = 0;
  for (std::intptr_t i = 0; i < static_cast<std::intptr_t>(count); ++i) {
    if (methods[i].setter != nullptr) ++total;
    if (methods[i].implementation != nullptr) ++total;
  }
  return total;
}

REALmethodDefinition ModuleMethod(const REALmethodDefinition& method, REALroutine routine,
                                  const char* declaration) {
  REALmethodDefinition entry = method;
  entry.implementation = routine;
  entry.setter = nullptr;
  entry.declaration = declaration;
  entry.flags |= kExtensionMethod;
  return entry;
}

// Appends the entries of one class method and moves `next` behind them. False when a declaration
// could not be made.
bool AppendModuleMethods(const REALmethodDefinition& method, const char* className,
                         REALmethodDefinition*& next) {
  if (method.setter != nullptr) {
    char* extended = AddClassParameter(method.declaration, className);
    if (extended == nullptr) return false;
    const char* declaration = AddAssignsParameter(extended);
    std::free(extended);
    if (declaration == nullptr) return false;
    *next++ = ModuleMethod(method, method.setter, declaration);
  }
  if (method.implementation != nullptr) {
    const char* declaration = AddClassParameter(method.declaration, className);
    if (declaration == nullptr) return false;
    *next++ = ModuleMethod(method, method.implementation, declaration);
  }
  return true;
}

const char* NewModuleName(const char* className) {
  TextBuilder<100> name(99);
  name.Append(className).Append(gpartname).Append("ExtensionZVQ");
  return CopyText(name.Text());
}

}  // namespace

void RegisterModule(const REALclassDefinition& definition) {
  if (definition.methods == nullptr || definition.methodCount == 0) return;
  auto* module = static_cast<REALmoduleDefinition*>(AllocateZeroed(sizeof(REALmoduleDefinition)));
  if (module == nullptr) return;
  const auto* methods = static_cast<const REALmethodDefinition*>(definition.methods);
  const std::uintptr_t total = CountModuleMethods(methods, definition.methodCount);
  auto* moduleMethods = static_cast<REALmethodDefinition*>(
      AllocateZeroed(std::uint64_t{total} * sizeof(REALmethodDefinition)));
  if (moduleMethods == nullptr) {
    std::free(module);
    return;
  }
  // Deliberate: what was made stays behind when a later step fails; it is never more than one
  // record's worth.
  REALmethodDefinition* next = moduleMethods;
  for (std::uintptr_t i = 0; i < definition.methodCount; ++i) {
    if (!AppendModuleMethods(methods[i], definition.className, next)) return;
  }
  module->name = NewModuleName(definition.className);
  if (module->name == nullptr) return;
  module->version = static_cast<std::uintptr_t>(CurrentREALControlVersion);
  module->methods = moduleMethods;
  module->methodCount = total;
  REALRegisterModule(module);
}
