#include "tests/support/coverage.h"

#include <cstdio>

namespace support {
namespace {

int CountIn(const std::map<std::string, int>& row, const std::string& column) {
  const auto found = row.find(column);
  return found == row.end() ? 0 : found->second;
}

}  // namespace

const std::map<host::ApplicationKind, std::string>& KindNames() {
  static const std::map<host::ApplicationKind, std::string> names = {
      {host::ApplicationKind::kDesktop, "desktop"},
      {host::ApplicationKind::kWeb, "web"},
      {host::ApplicationKind::kConsole, "console"},
      {host::ApplicationKind::kNone, "none"}};
  return names;
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
    for (const std::string& column : columns_) {
      if (CountIn(counts, column) < least) gaps.push_back(row + ", " + column);
    }
  }
  return gaps;
}

void Coverage::Print(const std::string& heading) const {
  std::printf("%-24s", heading.c_str());
  for (const std::string& column : columns_) std::printf(" %8s", column.c_str());
  std::printf("\n");
  for (const auto& [row, counts] : cells_) {
    std::printf("%-24s", row.c_str());
    for (const std::string& column : columns_) std::printf(" %8d", CountIn(counts, column));
    std::printf("\n");
  }
  std::printf("%d cases\n", Total());
}

}  // namespace support
