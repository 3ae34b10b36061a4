#include "tool/exit_status.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tool {

void CheckPrinted() {
  const bool isFlushed = std::fflush(stdout) == 0;
  if (isFlushed && std::ferror(stdout) == 0) return;
  throw Failure(std::string("cannot write to standard output: ") + std::strerror(errno));
}

void Complain(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::fprintf(stderr, "picturehost: %s\n", text.c_str());
}

}  // namespace tool
