// What a differential test covered: how many cases fell into each cell of a table.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/runtime.h"

namespace support {

// All kinds of application, with their names.
const std::map<host::ApplicationKind, std::string>& KindNames();

class Coverage {
 public:
  // How many cases a cell is due.
  using Due = std::function<int(const std::string& row, const std::string& column)>;

  explicit Coverage(std::vector<std::string> columns) : columns_(std::move(columns)) {}

  // Throws std::out_of_range for a column that the table lacks.
  void Count(const std::string& row, const std::string& column);

  std::size_t Rows() const { return cells_.size(); }
  int Total() const;
  // "row, column" of every cell with fewer than `least` cases, in every row that was counted at
  // all.
  std::vector<std::string> Gaps(int least) const;
  // "row, column: count" of every cell with another number of cases than is due, likewise.
  std::vector<std::string> Unlike(const Due& due) const;
  // To standard output, with a dash for each empty cell.
  void Print(const std::string& heading) const;

 private:
  std::vector<std::string> columns_;
  std::map<std::string, std::map<std::string, int>> cells_;
};

}  // namespace support
