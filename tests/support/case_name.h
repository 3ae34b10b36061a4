// Names for the rows of table-driven tests.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace support {

// The row's member `name`, which must be letters and digits only.
template <typename Row>
std::string CaseName(const testing::TestParamInfo<Row>& row) {
  return row.param.name;
}

}  // namespace support
