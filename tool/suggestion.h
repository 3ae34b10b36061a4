// "Did you mean": the right word for a mistyped one.
#pragma once

#include <string>
#include <vector>

namespace tool {

// The candidate nearest to `word`, or "" when none is near. Letter case does not count. A letter
// put in, left out, replaced or swapped with its neighbour is one mistake, and at most a third of
// the letters of the longer word, rounded down, may be mistakes. Where none is as near as that, the
// shortest candidate that `word`, of three letters or more, is the beginning of. The first of
// several equally good ones.
std::string Nearest(const std::string& word, const std::vector<std::string>& candidates);

// "; did you mean 'ScaleZVQ'?", or "" when no candidate is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace tool
