#include "tests/plugin/fake_host.h"

#include "plugin/host_state.h"
#include "tests/support/linked_plugin.h"

namespace plugin_test {

namespace {

FakeHost* current = nullptr;

bool IsLookUp(const std::string& line) { return line.starts_with("resolve("); }

}  // namespace

FakeHost::FakeHost() {
  current = this;
  support::ResetLinkedPlugin();
  gResolver = Resolve;
}

FakeHost::~FakeHost() {
  support::ResetLinkedPlugin();
  current = nullptr;
}

FakeHost& FakeHost::Current() { return *current; }

REALroutine FakeHost::Resolve(const char* entryName) {
  current->Note("resolve(" + std::string(entryName) + ")");
  const auto entry = current->entries_.find(entryName);
  return entry == current->entries_.end() ? nullptr : entry->second;
}

std::vector<std::string> FakeHost::Calls() const {
  std::vector<std::string> calls;
  for (const std::string& line : lines_) {
    if (!IsLookUp(line)) calls.push_back(line);
  }
  return calls;
}

int FakeHost::LookUps(const std::string& entryName) const {
  int count = 0;
  for (const std::string& line : lines_) count += line == "resolve(" + entryName + ")";
  return count;
}

}  // namespace plugin_test
