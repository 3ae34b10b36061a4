// What host calls cost a plug-in beyond the time that the host itself measures within its entries:
// their arguments are written down before, and their strings freed after. It is found by making the
// same calls.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/runtime.h"

namespace bench {

class HostTime {
 public:
  explicit HostTime(host::Runtime& runtime);  // makes some thousand calls of the host

  // Seconds for the calls that these lines of the host's trace show.
  double Missed(const std::vector<std::string>& lines) const;

 private:
  std::map<std::string, double> seconds_;  // by name of the entry
  double others_ = 0;                      // for any other
};

}  // namespace bench
