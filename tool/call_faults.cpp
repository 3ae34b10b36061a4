#include "tool/call_faults.h"

namespace tool {

std::vector<std::string> FaultsOf(const host::CallReport& report, const host::Runtime& runtime,
                                  std::size_t raisedBefore, host::Type resultType,
                                  const std::string& call) {
  std::vector<std::string> faults;
  for (const std::string& sentence : report.violations) {
    faults.push_back(call + ": the plug-in misused the host: " + sentence);
  }
  for (const std::string& sentence : report.leftOver) {
    faults.push_back(call + ": the plug-in left something over: " + sentence);
  }
  for (std::size_t i = raisedBefore; i < runtime.Raised().size(); ++i) {
    const host::RaisedException& raised = runtime.Raised()[i];
    faults.push_back(call + ": the plug-in raised " + raised.className +
                     (raised.hasMessage ? ": " + raised.message : " without a message"));
  }
  const bool* done = std::get_if<bool>(&report.result);
  if (resultType == host::Type::kPicture && report.ResultPicture() == nullptr) {
    faults.push_back(call + " was refused by the plug-in: it returned nil");
  } else if (done != nullptr && !*done) {
    faults.push_back(call + " was refused by the plug-in: it returned false");
  }
  return faults;
}

}  // namespace tool
