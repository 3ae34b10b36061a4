#include "tests/support/coverage.h"

#include <algorithm>
#include <cstdio>

namespace support {

const std::map<host::ApplicationKind, std::string>& KindNames() {
  static const std::map<host::ApplicationKind, std::string> names = {
      {host::ApplicationKind::kDesktop, "desktop"},
      {host::ApplicationKind::kWeb, "web"},
      {host::ApplicationKind::kConsole, "console"},
      {host::ApplicationKind::kNone, "none"}};
  return names;
}

void Coverage::Count(const std::string& row, const std::string& column) {
  std::map<std::string, int>& counts = cells_[row];
  if (counts.empty()) {
    for (const std::string& each : columns_) counts[each] = 0;
  }
  ++counts.at(column);
}

int Coverage::Total() const {
  int total = 0;
  for (const auto& [row, counts] : cells_) {
    for (const auto& [column, count] : counts) total += count;
  }
  return total;
}

std::vector<std::string> Coverage::Gaps(int least) const {
  std::vector<std::string> gaps;
  for (const auto& [row, counts] : cells_) {
    for (const auto& [column, count] : counts) {
      if (count < least) gaps.push_back(row + ", " + column);
    }
  }
  return gaps;
}

std::vector<std::string> Coverage::Unlike(const Due& due) const {
  std::vector<std::string> cells;
  for (const auto& [row, counts] : cells_) {
    for (const auto& [column, count] : counts) {
      if (count == due(row, column)) continue;
      cells.push_back(row + ", " + column + ": " + std::to_string(count));
    }
  }
  return cells;
}

void Coverage::Print(const std::string& heading) const {
  const auto width = [](const std::string& column) {
    return static_cast<int>(std::max<std::size_t>(column.size(), 5));
  };
  std::printf("%-26s", heading.c_str());
  for (const std::string& column : columns_) std::printf(" %*s", width(column), column.c_str());
  std::printf("\n");
  for (const auto& [row, counts] : cells_) {
    std::printf("%-26s", row.c_str());
    for (const std::string& column : columns_) {
      const int count = counts.at(column);
      std::printf(" %*s", width(column), count == 0 ? "-" : std::to_string(count).c_str());
    }
    std::printf("\n");
  }
}

}  // namespace support
