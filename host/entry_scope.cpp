// Tracing, intercepting and handle look-up of entries.
#include "host/entry_scope.h"

#include <exception>
#include <utility>

namespace host {

void Entries::Raise(Runtime& runtime, const RuntimeException& exception) {
  runtime.raised_.push_back(
      {exception.ClassName(), exception.hasMessage, exception.message, exception.errorNumber});
}

std::string Shown(std::int64_t number) { return std::to_string(number); }

std::string Shown(const char* text) {
  return text == nullptr ? "nil" : "\"" + std::string(text) + "\"";
}

std::string ShownHandle(const void* handle) {
  if (handle == nullptr) return "nil";
  const Object* object = Runtime::Current().Book().Find(handle);
  return object == nullptr ? "unknown" : object->Name();
}

std::string Listed(const std::string& name, std::initializer_list<std::string> arguments) {
  std::string line = name + "(";
  bool first = true;
  for (const std::string& argument : arguments) {
    if (!first) line += ", ";
    line += argument;
    first = false;
  }
  return line + ")";
}

EntryTimer::EntryTimer(Runtime& runtime) : time_(runtime.entryTime), measures_(time_.on) {
  if (measures_ && time_.depth++ == 0) start_ = std::chrono::steady_clock::now();
}

EntryTimer::~EntryTimer() {
  if (!measures_ || --time_.depth > 0) return;
  const std::chrono::duration<double> lived = std::chrono::steady_clock::now() - start_;
  time_.seconds += lived.count();
}

EntryScope::EntryScope(const char* entry, Kind kind, std::string line)
    : runtime_(Runtime::Current()),
      kind_(kind),
      line_(std::move(line)),
      exceptions_(std::uncaught_exceptions()),
      timer_(runtime_) {
  const int number = Entries::CountCall(runtime_);
  taker_ = runtime_.Taker(entry);
  if (kind_ == Kind::kNoResult) runtime_.Calls().Add(line_);
  if (!runtime_.intercept) return;
  try {
    verdict_ = runtime_.intercept({entry, number});
  } catch (...) {
    if (kind_ == Kind::kHasResult) runtime_.Calls().Add(line_ + " threw");
    throw;
  }
}

EntryScope::~EntryScope() {
  if (kind_ == Kind::kNoResult) return;
  const bool threw = std::uncaught_exceptions() > exceptions_;
  runtime_.Calls().Add(threw ? line_ + " threw" : line_ + " = " + result_);
}

void EntryScope::AddViolation(const std::string& sentence) {
  Book().AddViolation(taker_ + ": " + sentence);
}

std::uint8_t EntryScope::Answer(bool success) {
  result_ = success ? "1" : "0";
  return success ? kSuccess : 0;
}

std::uint8_t EntryScope::AnswerRead(std::string value) {
  NoteResult(std::move(value));
  return kSuccess;
}

std::uint8_t EntryScope::AnswerFailedRead() {
  NoteResult("failed");
  return 0;
}

Object* EntryScope::FindLiving(const void* handle) {
  if (handle == nullptr) {
    AddViolation("it was given nil.");
    return nullptr;
  }
  Object* object = Book().Find(handle);
  if (object == nullptr) {
    AddViolation("it was given a handle that the host never gave out.");
    return nullptr;
  }
  if (!object->Alive()) {
    AddViolation("it was given " + object->Name() + ", whose last reference is gone.");
    return nullptr;
  }
  return object;
}

void EntryScope::WrongClass(const Object& object) {
  AddViolation("it was given " + object.Name() + ", which is of the wrong class.");
}

}  // namespace host
