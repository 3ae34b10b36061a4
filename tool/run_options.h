// What the command line of picturehost run says.
#pragma once

#include <string>
#include <vector>

#include "tool/host_options.h"

namespace tool {

struct RunOptions {
  HostOptions host;
  std::vector<std::string> words;  // inputs, the method, its arguments
  std::string mask;                // empty: none
  std::string output;
  int jobs = 1;
  bool json = false;
  bool quiet = false;
};

}  // namespace tool
