// The faults by name. Each topic keeps its own in one table; a fault does one thing at one place.
#pragma once

#include <span>
#include <vector>

#include "tests/tool/faulty/method_call.h"

namespace faulty {

// The methods on their way to the host.
struct Registration {
  std::vector<REALmethodDefinition> methods;
  int start = 1;  // which start of the plug-in this is
  int times = 1;  // how often the host will hear of it
};

// What the real plug-in finds in place of an entry that the host has.
struct Substitute {
  template <typename Entry>
  Substitute(const char* entryName, Entry* own)
      : entry(entryName), routine(reinterpret_cast<REALroutine>(own)) {}

  const char* entry;
  REALroutine routine;
};

struct Fault {
  using Start = void();
  using Register = void(Registration& registration);
  using Around = void(MethodCall& call);

  Fault(const char* n, Start* f) : name(n), start(f) {}
  Fault(const char* n, Register* f) : name(n), registration(f) {}
  Fault(const char* n, Around* f) : name(n), around(f) {}
  Fault(const char* n, std::vector<Substitute> s) : name(n), substitutes(std::move(s)) {}

  const char* name;
  Start* start = nullptr;            // before the real plug-in starts
  Register* registration = nullptr;  // before the host hears of the methods
  Around* around = nullptr;          // in place of MethodCall::Proceed
  std::vector<Substitute> substitutes;
};

std::span<const Fault> RegistrationFaults();
std::span<const Fault> RequestFaults();
std::span<const Fault> PixelFaults();
std::span<const Fault> MemoryFaults();
std::span<const Fault> ReferenceFaults();
std::span<const Fault> YieldFaults();
std::span<const Fault> FailureFaults();

// The one that VALIDATE_FAULT names, or null.
const Fault* ChosenFault();

}  // namespace faulty
