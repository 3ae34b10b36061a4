// The conversation between scripts/bench and a worker, one line each way, over standard input and
// output:
//
//   list                   the names of the candidates, a tab after each
//   CANDIDATE<tab>WORK     does the work (work.h), a short one repeatedly, and answers with
//     MILLISECONDS FAULTS    the mean of a repetition, and the page faults of it
//     -                      this candidate has nothing comparable
//     refused                the plug-in gave no result
//     does not fit           the pictures find no room in this process
//   CANDIDATE<tab>WORK<tab>COUNT   the same, but the median of COUNT times
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/work.h"

namespace bench {

enum class Outcome { kDone, kNothing, kRefused, kDoesNotFit };

// One repetition. Page faults are those of the same stretch of time.
struct Taken {
  Outcome outcome = Outcome::kDone;
  double milliseconds = 0;
  long faults = 0;
};

// Runs a work once; makes its pictures at the first call, before the clock starts. std::bad_alloc
// counts as kDoesNotFit.
using Run = std::function<Taken(const Work&)>;

struct Candidate {
  std::string name;
  Run run;
};

long PageFaults();  // of this process so far, those without input and output

// Answers until the input ends; the process's exit status.
int Serve(const std::vector<Candidate>& candidates);

}  // namespace bench
