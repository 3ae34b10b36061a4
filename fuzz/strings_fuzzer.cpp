// Fuzzes the building of host strings: any bytes, encoding, host version and failing entry, judged
// by the host's ledger.
#include <stdexcept>

#include "fuzz/input.h"
#include "host/runtime.h"
#include "plugin/strings.h"
#include "tests/support/linked_plugin.h"

namespace {

constexpr double kVersions[] = {0.0, 2011.04, 2012.0, 2012.2, 2013.0, 2013.04, 3000.0};
constexpr std::uint32_t kEncodings[] = {kEncodingMacRoman, kEncodingUtf16,   kEncodingWindowsLatin1,
                                        kEncodingAscii,    kEncodingUnknown, kEncodingUtf8,
                                        kEncodingUtf32};

// Lets one entry fail or throw, as the input says.
void Disturb(host::Runtime& runtime, fuzz::Input& input) {
  const int failing = input.Between(0, 8);
  const int throwing = input.Between(0, 8);
  const bool ordinary = input.Coin();
  runtime.intercept = [=](const host::EntryCall& call) {
    const std::string entry = call.entry;
    // References must count, or the ledger could not judge.
    if (entry.starts_with("REALUnlock")) return host::Verdict::kProceed;
    // Only exceptions of the string routines become host exceptions; others pass through.
    if (call.number == throwing && entry.find("String") != std::string::npos &&
        entry.find("SetProp") == std::string::npos) {
      if (ordinary) throw std::out_of_range("beyond");
      throw 7;
    }
    return call.number == failing ? host::Verdict::kFail : host::Verdict::kProceed;
  };
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const double version = kVersions[input.Between(0, 6)];
  host::Runtime runtime({.version = version});
  support::StartLinkedPlugin(version);
  const std::uint32_t encoding = input.Coin() ? input.Word() : kEncodings[input.Between(0, 6)];
  Disturb(runtime, input);
  const std::string bytes = input.Rest();
  const auto before = runtime.Book().Take();
  REALstring text =
      REALBuildUnicodeString(bytes.data(), static_cast<std::int64_t>(bytes.size()), encoding);
  fuzz::Require(!bytes.empty() || text == nullptr, "nothing became a string");
  auto* object = static_cast<const host::Object*>(runtime.Book().Find(text));
  fuzz::Require(text == nullptr || object != nullptr, "a string that the host did not make");
  for (const std::string& sentence : runtime.Book().Differences(before, object)) {
    fuzz::Require(false, sentence);
  }
  for (const std::string& sentence : runtime.Book().Violations()) fuzz::Require(false, sentence);
  return 0;
}
