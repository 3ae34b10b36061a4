// A method on several pictures, each in a process of its own.
#pragma once

#include <vector>

#include "tool/run_options.h"
#include "tool/run_words.h"

namespace tool {

// What the plug-in registers, read by a process of its own. Throws UsageError or Failure.
std::vector<host::Declaration> MethodsOf(const RunOptions& options);

// Runs the pictures in their order, at most options.jobs at a time. What fails for one of them
// never stops the others. Tells numbers or JSON on standard output, in the pictures' order; what
// the plug-in writes, what failed, and (but for quiet) how many went well, on standard error.
// Returns the exit status: 1 when some failed, 2 when none could be understood. Throws UsageError
// or Failure, before anything has run, for what is wrong with all.
//
// SIGINT, SIGTERM and SIGHUP are passed on to the processes that work, and nothing more is begun;
// when they have ended, this one ends by that signal.
int RunMany(const RunOptions& options, const RunWords& words);

}  // namespace tool
