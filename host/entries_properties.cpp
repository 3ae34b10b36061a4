// Entries that read and set properties by name. Two of them answer to two names.
#include "host/entry_tables.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

// What a failed read leaves behind.
constexpr std::int32_t kIntegerNoise = 0x5A5A5A5A;
constexpr std::uint8_t kByteNoise = 0xFF;
// What a read Boolean that is true holds; deliberately not 1.
constexpr std::uint8_t kTrue = 0x80;

// Reading is allowed on nil, which has no properties.
const Object* Readable(EntryScope& call, const void* object, const char* property,
                       const void* value) {
  if (call.Failed() || object == nullptr) return nullptr;
  if (property == nullptr || value == nullptr) {
    call.AddViolation("the property's name or the place for its value is missing.");
    return nullptr;
  }
  return call.Find<Object>(object);
}

std::uint8_t GetInteger(const char* entry, REALobject object, const char* property,
                        std::int32_t* value) {
  EntryScope call(entry, Kind::kHasResult, Listed(entry, {Shown(object), Shown(property)}));
  if (value != nullptr) *value = kIntegerNoise;
  const Object* found = Readable(call, object, property, value);
  int read = 0;
  if (found == nullptr || !found->GetInteger(property, read)) return call.AnswerFailedRead();
  *value = read;
  return call.AnswerRead(Shown(read));
}

std::uint8_t GetPropValueInteger(REALobject object, const char* property, std::int32_t* value) {
  return GetInteger("REALGetPropValueInteger", object, property, value);
}

std::uint8_t GetPropValueInt(REALobject object, const char* property, std::int32_t* value) {
  return GetInteger("REALGetPropValueInt", object, property, value);
}

std::uint8_t GetPropValueBool(REALobject object, const char* property, std::uint8_t* value) {
  EntryScope call("REALGetPropValueBool", Kind::kHasResult,
                  Listed("REALGetPropValueBool", {Shown(object), Shown(property)}));
  if (value != nullptr) *value = kByteNoise;
  const Object* found = Readable(call, object, property, value);
  bool read = false;
  if (found == nullptr || !found->GetBoolean(property, read)) return call.AnswerFailedRead();
  *value = read ? kTrue : 0;
  return call.AnswerRead(read ? "true" : "false");
}

// The object whose property is to be set; null after a violation.
Object* Settable(EntryScope& call, const void* object, const char* property) {
  if (call.Failed()) return nullptr;
  if (property == nullptr) {
    call.AddViolation("the property's name is missing.");
    return nullptr;
  }
  return call.Find<Object>(object);
}

void RefuseProperty(EntryScope& call, const Object& object, const char* property) {
  call.AddViolation(object.Name() + " has no settable property \"" + property + "\" of this type.");
}

void SetInteger(const char* entry, REALobject object, const char* property, std::int32_t value) {
  EntryScope call(entry, Kind::kNoResult,
                  Listed(entry, {Shown(object), Shown(property), Shown(value)}));
  Object* found = Settable(call, object, property);
  if (found != nullptr && !found->SetInteger(property, value)) {
    RefuseProperty(call, *found, property);
  }
}

void SetPropValueInteger(REALobject object, const char* property, std::int32_t value) {
  SetInteger("REALSetPropValueInteger", object, property, value);
}

void SetPropValueInt(REALobject object, const char* property, std::int32_t value) {
  SetInteger("REALSetPropValueInt", object, property, value);
}

void SetPropValueString(REALobject object, const char* property, REALstring value) {
  EntryScope call("REALSetPropValueString", Kind::kNoResult,
                  Listed("REALSetPropValueString", {Shown(object), Shown(property), Shown(value)}));
  Object* found = Settable(call, object, property);
  if (found == nullptr) return;
  Text* text = nullptr;
  if (value != nullptr) {
    text = call.Find<Text>(value);
    if (text == nullptr) return;
  }
  if (!found->SetString(property, text)) RefuseProperty(call, *found, property);
}

const EntryRow kRows[] = {
    {"REALGetPropValueInteger", RoutineOf<REALGetPropValueIntegerEntry>(GetPropValueInteger)},
    {"REALGetPropValueInt", RoutineOf<REALGetPropValueIntegerEntry>(GetPropValueInt)},
    {"REALGetPropValueBool", RoutineOf<REALGetPropValueBoolEntry>(GetPropValueBool)},
    {"REALSetPropValueInteger", RoutineOf<REALSetPropValueIntegerEntry>(SetPropValueInteger)},
    {"REALSetPropValueInt", RoutineOf<REALSetPropValueIntegerEntry>(SetPropValueInt)},
    {"REALSetPropValueString", RoutineOf<REALSetPropValueStringEntry>(SetPropValueString)},
};

}  // namespace

std::span<const EntryRow> PropertyEntries() { return kRows; }

}  // namespace host
