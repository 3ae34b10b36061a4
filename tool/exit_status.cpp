#include "tool/exit_status.h"

#include <algorithm>
#include <cstdio>

namespace tool {

void Complain(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::fprintf(stderr, "picturehost: %s\n", text.c_str());
}

}  // namespace tool
