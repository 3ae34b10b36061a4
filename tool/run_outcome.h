// What became of one picture of a run: kept, handed from process to process, told as JSON.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tool {

enum class RunStatus {
  kDone,
  kFailed,         // the plug-in refused, or the output cannot be written
  kNotUnderstood,  // not a picture, or a size that cannot be
  kInterrupted,    // ended by the user, or never begun because of that
};

struct RunOutcome {
  std::string input, output;
  std::string call;  // "ScaleZVQ(400, 300, false, 0)"; empty when it did not come to a call
  RunStatus status = RunStatus::kFailed;
  std::vector<std::string> faults;  // a line each, empty when done
  int width = 0, height = 0;        // of the picture that was saved
  bool timed = false;               // the call came to its end
  double milliseconds = 0;          // within the call, the host's part of it too
  int yields = 0;
  std::string number;  // the result of a method that answers with a number, in decimal
};

// The exit status of a run of this picture alone.
int ExitStatusOf(RunStatus status);

// One JSON object, in one line without its end.
std::string JsonOf(const RunOutcome& outcome);

// All but the names of the files, for the same program to read again.
void Write(std::ostream& out, const RunOutcome& outcome);
// False, with `outcome` as far as it was read, when it is not all there.
bool Read(std::istream& in, RunOutcome& outcome);

}  // namespace tool
