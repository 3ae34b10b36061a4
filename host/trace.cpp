// The list of trace lines.
#include "host/trace.h"

#include <utility>

namespace host {

void Trace::Add(std::string line) {
  lines_.push_back(std::move(line));
  if (onLine) onLine(lines_.back());
}

std::vector<std::string> Trace::Calls() const {
  std::vector<std::string> calls;
  for (const std::string& line : lines_) {
    if (!line.starts_with("resolve(")) calls.push_back(line);
  }
  return calls;
}

}  // namespace host
