// What the values of options may be. The help, the manual page and the completions show it too.
#pragma once

// clang-format off
#include <CLI/Error.hpp>  // the next one needs it
#include <CLI/Validators.hpp>
// clang-format on
#include <string>
#include <vector>

namespace tool {

// One of these words, in any letter case; for CLI::Option::transform, which makes it the word as it
// stands here. Described as "{desktop,web}".
CLI::Validator OneOf(const std::vector<std::string>& words);

// A whole number of lowest to highest; for CLI::Option::check. Described as "1 to 64".
CLI::Validator Between(int lowest, int highest);

}  // namespace tool
