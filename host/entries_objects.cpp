// Entries for references, new instances, class references, host methods and exceptions.
#include <map>
#include <memory>

#include "host/entry_tables.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

REALobject PluginNewInstance(const char* className) {
  EntryScope call("PluginNewInstance", Kind::kHasResult,
                  Listed("PluginNewInstance", {Shown(className)}));
  if (call.Failed() || className == nullptr || !call.Host().HasClass(className)) {
    return call.AnswerObject<REALobject>(nullptr);
  }
  const std::string name = className;
  Object* made = nullptr;
  if (name == "Picture") {
    made =
        call.Book().Add(std::make_unique<Picture>(call.Host().NewPictureSpec(0, 0)), call.Taker());
  } else if (name.ends_with("Exception")) {
    made = call.Book().Add(std::make_unique<RuntimeException>(name), call.Taker());
  }
  return call.AnswerObject<REALobject>(made);
}

// Class references are not objects: they are never released, and only null has a meaning.
REALclassRef PluginObjectType(const char* className) {
  static auto& references = *new std::map<std::string, char>;
  EntryScope call("pluginObjectType", Kind::kHasResult,
                  Listed("pluginObjectType", {Shown(className)}));
  if (call.Failed() || className == nullptr || !call.Host().HasClass(className)) return nullptr;
  call.NoteResult(className);
  return reinterpret_cast<REALclassRef>(&references[className]);
}

void LockObject(REALobject object) {
  EntryScope call("REALLockObject", Kind::kNoResult, Listed("REALLockObject", {Shown(object)}));
  if (call.Failed()) return;
  if (auto* found = call.Find<Object>(object)) call.Book().Lock(found, call.Taker());
}

void UnlockObject(REALobject object) {
  EntryScope call("REALUnlockObject", Kind::kNoResult, Listed("REALUnlockObject", {Shown(object)}));
  if (call.Failed()) return;
  auto* found = call.Find<Object>(object);
  if (found == nullptr) return;
  if (dynamic_cast<Text*>(found) != nullptr) {
    call.AddViolation("it was given " + found->Name() + ", a string.");
    return;
  }
  call.Book().Unlock(found, call.Taker());
}

REALroutine LoadObjectMethod(REALobject object, const char* declaration) {
  EntryScope call("REALLoadObjectMethod", Kind::kHasResult,
                  Listed("REALLoadObjectMethod", {Shown(object), Shown(declaration)}));
  if (call.Failed() || declaration == nullptr) return nullptr;
  const auto* found = call.Find<Object>(object);
  if (found == nullptr || call.Host().IsWithheld(declaration)) return nullptr;
  const REALroutine routine = HostMethod(*found, declaration);
  if (routine != nullptr) call.NoteResult(ParseDeclaration(declaration)->name);
  return routine;
}

void RaiseException(REALobject exception) {
  EntryScope call("RuntimeRaiseException", Kind::kNoResult,
                  Listed("RuntimeRaiseException", {Shown(exception)}));
  if (call.Failed()) return;
  if (const auto* found = call.Find<RuntimeException>(exception)) {
    Entries::Raise(call.Host(), *found);
  }
}

const EntryRow kRows[] = {
    {"PluginNewInstance", RoutineOf<PluginNewInstanceEntry>(PluginNewInstance)},
    {"pluginObjectType", RoutineOf<PluginObjectTypeEntry>(PluginObjectType)},
    {"REALLockObject", RoutineOf<REALLockObjectEntry>(LockObject)},
    {"REALUnlockObject", RoutineOf<REALUnlockObjectEntry>(UnlockObject)},
    {"REALLoadObjectMethod", RoutineOf<REALLoadObjectMethodEntry>(LoadObjectMethod)},
    {"RuntimeRaiseException", RoutineOf<RuntimeRaiseExceptionEntry>(RaiseException)},
};

}  // namespace

std::span<const EntryRow> ObjectEntries() { return kRows; }

}  // namespace host
