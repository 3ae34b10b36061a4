// What a differential test covered: how many cases fell into each cell of a table.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/runtime.h"

namespace support {

// All kinds of application, with their names.
const std::map<host::ApplicationKind, std::string>& KindNames();

class Coverage {
 public:
  explicit Coverage(std::vector<std::string> columns) : columns_(std::move(columns)) {}

  void Count(const std::string& row, const std::string& column) { ++cells_[row][column]; }

  std::size_t Rows() const { return cells_.size(); }
  int Total() const;
  // "row, column" of every cell with fewer than `least` cases, in every row that was counted at
  // all.
  std::vector<std::string> Gaps(int least) const;
  // To standard output, with a line for the total.
  void Print(const std::string& heading) const;

 private:
  std::vector<std::string> columns_;
  std::map<std::string, std::map<std::string, int>> cells_;
};

}  // namespace support
