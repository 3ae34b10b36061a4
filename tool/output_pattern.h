// Names of outputs with placeholders, for several pictures at once.
#pragma once

#include <string>
#include <vector>

namespace tool {

// What the output is called: {name} is the input's name without folder and ending, {ext} its ending
// without the point, {index} its place, from 1, with zeros in front to as many digits as `count`
// has. All else stays as it is, other braces too.
std::string OutputName(const std::string& pattern, const std::string& input, std::size_t index,
                       std::size_t count);

// The outputs of several inputs, in their order. Throws UsageError with one line when the pattern
// has no placeholder or one that there is not, when two inputs would have the same output, or when
// an output is one of the inputs or of `alsoRead`; names that lead to the same file are the same.
std::vector<std::string> OutputNames(const std::string& pattern,
                                     const std::vector<std::string>& inputs,
                                     const std::vector<std::string>& alsoRead);

}  // namespace tool
