// A host made of single routines, for tests of the plug-in's inner functions: it knows the entries
// that a test offers and writes down every look-up and every call.
#pragma once

#include <array>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "plugin/host_interface.h"

namespace plugin_test {

// Starts the linked plug-in anew with this host's resolver, and resets it again at the end. One at
// a time.
class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;
  static FakeHost& Current();

  static REALroutine Resolve(const char* entryName);

  template <typename Routine>
  void Offer(const std::string& entryName, Routine* routine) {
    entries_[entryName] = reinterpret_cast<REALroutine>(routine);
  }
  void Withdraw(const std::string& entryName) { entries_.erase(entryName); }

  // "resolve(REALLockObject)" for look-ups, in the words of the stub for calls.
  void Note(std::string line) { lines_.push_back(std::move(line)); }
  const std::vector<std::string>& Lines() const { return lines_; }
  std::vector<std::string> Calls() const;  // without the look-ups
  int LookUps(const std::string& entryName) const;
  void ClearLines() { lines_.clear(); }

 private:
  std::map<std::string, REALroutine> entries_;
  std::vector<std::string> lines_;
};

// Values as text: numbers in decimal, texts in quotes with their address, other pointers by
// address.
inline std::string Show(const char* text) {
  char address[2 * sizeof(void*) + 4];
  snprintf(address, sizeof address, "@%zx", reinterpret_cast<std::size_t>(text));
  return '"' + std::string(text) + '"' + address;
}
template <typename T>
std::string Show(T value) {
  if constexpr (std::is_pointer_v<T>) {
    char address[2 * sizeof(void*) + 4];
    snprintf(address, sizeof address, "@%zx", reinterpret_cast<std::size_t>(value));
    return value == nullptr ? "nil" : address;
  } else if constexpr (std::is_same_v<T, bool>) {
    return value ? "true" : "false";
  } else {
    return std::to_string(value);
  }
}
template <typename First, typename... Rest>
requires(sizeof...(Rest) > 0) std::string Show(First first, Rest... rest) {
  return Show(first) + ", " + Show(rest...);
}

// A handle that is never followed.
template <typename Handle>
Handle FakeHandle(std::uintptr_t number) {
  return reinterpret_cast<Handle>(0x1000 + 16 * number);
}

// A record as its words.
template <typename Record>
std::array<std::uintptr_t, sizeof(Record) / sizeof(std::uintptr_t)> WordsOf(const Record& record) {
  std::array<std::uintptr_t, sizeof(Record) / sizeof(std::uintptr_t)> words;
  std::memcpy(words.data(), &record, sizeof record);
  return words;
}

inline std::uintptr_t Word(const void* address) {
  return reinterpret_cast<std::uintptr_t>(address);
}

}  // namespace plugin_test
