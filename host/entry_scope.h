// What every host entry does besides its work: it is counted and traced, an interceptor is asked,
// and the handles it was given are looked up.
#pragma once

#include <chrono>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "host/runtime.h"

namespace host {

// Access of the entries to the runtime's counters.
struct Entries {
  static int CountCall(Runtime& runtime) { return ++runtime.callNumber_; }
  static void CountYield(Runtime& runtime) { ++runtime.yields_; }
  static void SetReportedVersion(Runtime& runtime, double version) {
    runtime.reportedVersion_ = version;
  }
  static void Raise(Runtime& runtime, const RuntimeException& exception);
};

// An entry name and its routine; each file of entries has a table of them.
struct EntryRow {
  const char* name;
  REALroutine routine;
};

template <typename Function>
requires std::is_function_v<Function> REALroutine RoutineOf(Function* function) {
  return reinterpret_cast<REALroutine>(function);
}

// Success of an entry that answers with one byte: any value but 0, deliberately not 1.
inline constexpr std::uint8_t kSuccess = 0x40;

// Arguments as the trace shows them.
std::string Shown(std::int64_t number);
std::string Shown(const char* text);          // in quotes; null as nil
std::string ShownHandle(const void* handle);  // the object's name; nil or unknown
template <typename Number>
requires std::is_integral_v<Number> std::string Shown(Number number) {
  return Shown(static_cast<std::int64_t>(number));
}
template <typename Pointee>
std::string Shown(Pointee* handle) {
  return ShownHandle(handle);
}
std::string Listed(const std::string& name, std::initializer_list<std::string> arguments);

// Adds the time that it lives to the runtime's, when that is measured and no other entry runs.
class EntryTimer {
 public:
  explicit EntryTimer(Runtime& runtime);
  ~EntryTimer();
  EntryTimer(const EntryTimer&) = delete;
  EntryTimer& operator=(const EntryTimer&) = delete;

 private:
  Runtime::EntryTime& time_;
  bool measures_;
  std::chrono::steady_clock::time_point start_;
};

// One running entry. Its trace line is added at once for an entry without a result (so that what it
// calls comes after it), otherwise when the scope ends.
class EntryScope {
 public:
  enum class Kind { kNoResult, kHasResult };

  // `line` is the trace line up to the result. Asks the interceptor, whose exceptions pass out.
  EntryScope(const char* entry, Kind kind, std::string line);
  ~EntryScope();
  EntryScope(const EntryScope&) = delete;
  EntryScope& operator=(const EntryScope&) = delete;

  bool Failed() const { return verdict_ == Verdict::kFail; }
  Runtime& Host() const { return runtime_; }
  Ledger& Book() const { return runtime_.Book(); }
  const std::string& Taker() const { return taker_; }

  // The living object of class T behind a handle. Null, an unknown handle, a dead object or one of
  // another class is a violation, and null is returned.
  template <typename T>
  T* Find(const void* handle) {
    Object* object = FindLiving(handle);
    if (object == nullptr) return nullptr;
    T* found = dynamic_cast<T*>(object);
    if (found == nullptr) WrongClass(*object);
    return found;
  }

  void AddViolation(const std::string& sentence);  // "REALLockObject, call 3: sentence"

  // Answers, noted for the trace.
  std::uint8_t Answer(bool success);
  std::uint8_t AnswerRead(std::string value);  // success, shown as the value that was read
  std::uint8_t AnswerFailedRead();
  template <typename Handle>
  Handle AnswerObject(Object* object) {
    result_ = object == nullptr ? "nil" : object->Name();
    return HandleOf<Handle>(object);
  }
  void NoteResult(std::string shown) { result_ = std::move(shown); }

 private:
  Object* FindLiving(const void* handle);
  void WrongClass(const Object& object);

  Runtime& runtime_;
  Kind kind_;
  std::string line_;
  std::string result_ = "nil";
  std::string taker_;
  Verdict verdict_ = Verdict::kProceed;
  int exceptions_;
  EntryTimer timer_;
};

}  // namespace host
