#include "bench/worker.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "bench/works.h"

namespace bench {

int Serve(const std::vector<NamedCandidate>& candidates) {
  for (std::string line; std::getline(std::cin, line);) {
    if (line == "list") {
      for (const NamedCandidate& candidate : candidates) std::cout << candidate.name << '\t';
      std::cout << std::endl;
      continue;
    }
    const std::size_t tab = line.find('\t');
    const auto found = std::find_if(
        candidates.begin(), candidates.end(),
        [&](const NamedCandidate& candidate) { return candidate.name == line.substr(0, tab); });
    const Work* work = tab == std::string::npos ? nullptr : Find(line.c_str() + tab + 1);
    if (found == candidates.end() || work == nullptr) {
      std::cerr << "bench: not understood: " << line << std::endl;
      return 2;
    }
    const double milliseconds = found->run(*work);
    if (milliseconds < 0) {
      std::cout << '-' << std::endl;
    } else {
      std::cout << milliseconds << std::endl;
    }
  }
  return 0;
}

}  // namespace bench
