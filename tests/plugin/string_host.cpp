#include "tests/plugin/string_host.h"

#include "tests/support/linked_plugin.h"

namespace plugin_test {

StringHost::StringHost(double version) : runtime(host::RuntimeOptions{.version = version}) {
  support::StartLinkedPlugin(version);
}

StringHost::~StringHost() { support::ResetLinkedPlugin(); }

void StringHost::ThrowFrom(const std::string& entry, ThrowSomething throwIt, int times,
                           int spared) {
  runtime.intercept = [=, seen = 0](const host::EntryCall& call) mutable {
    if (entry != call.entry) return host::Verdict::kProceed;
    ++seen;
    if (seen > spared && seen <= spared + times) throwIt();
    return host::Verdict::kProceed;
  };
}

const host::Text* StringHost::TextOf(const void* handle) {
  const auto* text = dynamic_cast<const host::Text*>(runtime.Book().Find(handle));
  return text != nullptr && text->Alive() ? text : nullptr;
}

std::string StringHost::Taken(void* handle) {
  const host::Text* text = TextOf(handle);
  if (text == nullptr) return handle == nullptr ? "nil" : "not a string";
  const std::string shown = text->Bytes() + ", " + std::to_string(text->Encoding());
  runtime.Release(runtime.Book().Find(handle));
  return shown;
}

std::vector<std::string> StringHost::Raised() const {
  std::vector<std::string> shown;
  for (const host::RaisedException& raised : runtime.Raised()) {
    shown.push_back(raised.className + ": " + (raised.hasMessage ? raised.message : "no message"));
    if (raised.errorNumber != 0) shown.back() += ", number " + std::to_string(raised.errorNumber);
  }
  return shown;
}

std::vector<std::string> StringHost::LeftOver() {
  std::vector<std::string> sentences = runtime.Book().Differences({}, nullptr);
  for (const std::string& violation : runtime.Book().Violations()) sentences.push_back(violation);
  return sentences;
}

}  // namespace plugin_test
