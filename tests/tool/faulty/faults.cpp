#include "tests/tool/faulty/faults.h"

#include <cstdlib>
#include <cstring>

namespace faulty {

const Fault* ChosenFault() {
  const char* name = std::getenv("VALIDATE_FAULT");
  if (name == nullptr) return nullptr;
  for (const auto topic : {RegistrationFaults, RequestFaults, PixelFaults, MemoryFaults,
                           ReferenceFaults, YieldFaults, FailureFaults}) {
    for (const Fault& fault : topic()) {
      if (std::strcmp(fault.name, name) == 0) return &fault;
    }
  }
  return nullptr;
}

}  // namespace faulty
