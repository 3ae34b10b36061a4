// The dynamic symbols of a shared object of this program's word size.
#pragma once

#include <string>
#include <vector>

namespace plugin_test {

struct DynamicSymbol {
  std::string name;
  bool defined;
  bool weak;
  bool isFunction;
};

// In the order of the file, without the empty first one. Throws std::runtime_error for a file that
// is not such an object.
std::vector<DynamicSymbol> ReadDynamicSymbols(const std::string& path);

}  // namespace plugin_test
