// The conversation between scripts/bench and a worker, over standard input and output: a line with
// the name of a candidate, a tab and the name of a work makes it run once and answer with the
// milliseconds, or "-" when it cannot do that work; "list" makes it name its candidates on one
// line, with tabs.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Work;

// Runs a work once, its pictures being ready; milliseconds, below 0 when it cannot.
using Candidate = std::function<double(const Work&)>;

struct NamedCandidate {
  std::string name;
  Candidate run;
};

// Answers until the input ends.
int Serve(const std::vector<NamedCandidate>& candidates);

}  // namespace bench
