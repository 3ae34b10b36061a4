// Entries for host strings.
#include <memory>

#include "host/entry_tables.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

std::string ShownBytes(const char* bytes, std::int32_t length) {
  if (bytes == nullptr || length < 0) return "nil";
  return "\"" + std::string(bytes, static_cast<std::size_t>(length)) + "\"";
}

REALstring Build(EntryScope& call, const char* bytes, std::int32_t length, std::uint32_t encoding) {
  if (call.Failed()) return nullptr;
  if (length < 0 || (bytes == nullptr && length > 0)) {
    call.AddViolation("there are no bytes to build a string from.");
    return nullptr;
  }
  std::string text = length == 0 ? "" : std::string(bytes, static_cast<std::size_t>(length));
  return call.AnswerObject<REALstring>(
      call.Book().Add(std::make_unique<Text>(std::move(text), encoding), call.Taker()));
}

REALstring BuildString(const char* bytes, std::int32_t length) {
  EntryScope call("REALBuildString", Kind::kHasResult,
                  Listed("REALBuildString", {ShownBytes(bytes, length), Shown(length)}));
  return Build(call, bytes, length, kEncodingUnknown);
}

REALstring BuildStringWithEncoding(const char* bytes, std::int32_t length, std::uint32_t encoding) {
  EntryScope call("REALBuildStringWithEncoding", Kind::kHasResult,
                  Listed("REALBuildStringWithEncoding",
                         {ShownBytes(bytes, length), Shown(length), Shown(encoding)}));
  return Build(call, bytes, length, encoding);
}

void SetStringEncoding(REALstring text, std::uint32_t encoding) {
  EntryScope call("REALSetStringEncoding", Kind::kNoResult,
                  Listed("REALSetStringEncoding", {Shown(text), Shown(encoding)}));
  if (call.Failed()) return;
  if (auto* found = call.Find<Text>(text)) found->SetEncoding(encoding);
}

// Nil converts to nil.
REALstring ConvertString(REALstring text, std::uint32_t encoding) {
  EntryScope call("REALConvertString", Kind::kHasResult,
                  Listed("REALConvertString", {Shown(text), Shown(encoding)}));
  if (call.Failed() || text == nullptr) return nullptr;
  const auto* found = call.Find<Text>(text);
  if (found == nullptr) return nullptr;
  return call.AnswerObject<REALstring>(call.Book().Add(
      std::make_unique<Text>(found->ConvertedTo(encoding), encoding), call.Taker()));
}

void UnlockString(REALstring text) {
  EntryScope call("REALUnlockString", Kind::kNoResult, Listed("REALUnlockString", {Shown(text)}));
  if (call.Failed()) return;
  if (auto* found = call.Find<Text>(text)) call.Book().Unlock(found, call.Taker());
}

const EntryRow kRows[] = {
    {"REALBuildString", RoutineOf<REALBuildStringEntry>(BuildString)},
    {"REALBuildStringWithEncoding",
     RoutineOf<REALBuildStringWithEncodingEntry>(BuildStringWithEncoding)},
    {"REALSetStringEncoding", RoutineOf<REALSetStringEncodingEntry>(SetStringEncoding)},
    {"REALConvertString", RoutineOf<REALConvertStringEntry>(ConvertString)},
    {"REALUnlockString", RoutineOf<REALUnlockStringEntry>(UnlockString)},
};

}  // namespace

std::span<const EntryRow> StringEntries() { return kRows; }

}  // namespace host
