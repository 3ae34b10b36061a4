// The list of all checks.
#include "tool/checks.h"

namespace tool {

std::vector<Check> AllChecks() {
  std::vector<Check> all;
  for (const auto& topic :
       {RegistrationChecks(), ScalingChecks(), ResamplingChecks(), EffectChecks(), FormatChecks(),
        ReferenceChecks(), YieldChecks(), MemoryChecks(), FailureChecks(), RandomChecks()}) {
    all.insert(all.end(), topic.begin(), topic.end());
  }
  return all;
}

}  // namespace tool
