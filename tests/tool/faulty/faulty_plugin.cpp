// A plug-in for the tests of picturehost validate. It loads the plug-in that VALIDATE_REAL_PLUGIN
// names, stands between it and the host, and adds the one fault that VALIDATE_FAULT names.
#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

#include "plugin/host_interface.h"
#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void* gRealLibrary;
int gStarts;

// The methods in a list whose entries have `words` words, wrapped, and what the fault makes of
// them.
Registration Registered(const void* list, std::uintptr_t count, std::size_t words) {
  const std::size_t stride = words * sizeof(std::uintptr_t);
  Registration registration;
  registration.start = gStarts;
  for (std::uintptr_t i = 0; i < count; ++i) {
    REALmethodDefinition method = {};
    std::memcpy(&method, static_cast<const unsigned char*>(list) + i * stride, stride);
    Wrap(method);
    registration.methods.push_back(method);
  }
  const Fault* fault = ChosenFault();
  if (fault != nullptr && fault->registration != nullptr) fault->registration(registration);
  return registration;
}

// Such a list again. Like every record, it stays with the host for good.
void* NewList(const Registration& registration, std::size_t words) {
  const std::size_t stride = words * sizeof(std::uintptr_t);
  auto* list = static_cast<unsigned char*>(std::calloc(registration.methods.size() + 1, stride));
  for (std::size_t i = 0; i < registration.methods.size(); ++i) {
    std::memcpy(list + i * stride, &registration.methods[i], stride);
  }
  return list;
}

// Registers a copy of a module's or class's record with what the fault makes of its methods.
template <typename Entry, typename Record>
void RegisterCopy(const char* entry, const Record& record, std::size_t words) {
  const Registration registration = Registered(record.methods, record.methodCount, words);
  auto* copy = static_cast<Record*>(std::malloc(sizeof record));
  *copy = record;
  copy->methods = static_cast<decltype(copy->methods)>(NewList(registration, words));
  copy->methodCount = registration.methods.size();
  for (int i = 0; i < registration.times; ++i) Get<Entry>(entry)(copy);
}

constexpr char kRegisterModule[] = "PluginRegisterModule";
constexpr char kRegisterClassExtension[] = "PluginRegisterClassExtension";

void RegisterModule(REALmoduleDefinition* module) {
  RegisterCopy<PluginRegisterModuleEntry>(kRegisterModule, *module, 6);
}

void RegisterClassExtension(REALclassDefinition* definition) {
  RegisterCopy<PluginRegisterClassExtensionEntry>(kRegisterClassExtension, *definition,
                                                  definition->version <= 9 ? 4 : 6);
}

REALroutine In(std::span<const Substitute> substitutes, const char* name) {
  for (const Substitute& substitute : substitutes) {
    if (std::strcmp(substitute.entry, name) == 0) return substitute.routine;
  }
  return nullptr;
}

// The host's entries as the real plug-in finds them. What the host lacks stays missing.
REALroutine Resolve(const char* name) {
  const Substitute always[] = {{kRegisterModule, RegisterModule},
                               {kRegisterClassExtension, RegisterClassExtension}};
  const REALroutine found = gHost(name);
  if (found == nullptr) return nullptr;
  REALroutine own = In(always, name);
  const Fault* fault = ChosenFault();
  if (own == nullptr && fault != nullptr) own = In(fault->substitutes, name);
  return own != nullptr ? own : found;
}

// Process-wide variables of the plug-in start anew when this one is unloaded.
__attribute__((destructor)) void UnloadReal() {
  if (gRealLibrary != nullptr) dlclose(gRealLibrary);
}

void Start() {
  ++gStarts;
  const Fault* fault = ChosenFault();
  if (fault != nullptr && fault->start != nullptr) fault->start();
  if (gRealLibrary == nullptr) {
    const char* path = std::getenv("VALIDATE_REAL_PLUGIN");
    gRealLibrary = dlopen(path == nullptr ? "" : path, RTLD_NOW | RTLD_LOCAL);
  }
  if (gRealLibrary == nullptr) return;
  using Main = void(REALresolver);
  const auto start = reinterpret_cast<Main*>(dlsym(gRealLibrary, "REALPluginMain"));
  start(Resolve);
}

}  // namespace
}  // namespace faulty

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver host) {
  faulty::gHost = host;
  faulty::Start();
}
