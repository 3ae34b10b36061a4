#include "tool/run_outcome.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <istream>
#include <ostream>

#include "tool/exit_status.h"
#include "tool/json_text.h"

namespace tool {
namespace {

const char* NameOf(RunStatus status) {
  switch (status) {
    case RunStatus::kDone:
      return "done";
    case RunStatus::kInterrupted:
      return "interrupted";
    default:
      return "failed";
  }
}

std::string TextOrNull(const std::string& text) { return text.empty() ? "null" : JsonText(text); }

// JSON has no infinities and no NaN.
std::string NumberOrNull(const std::string& number) {
  const bool finite = !number.empty() && std::isfinite(std::strtod(number.c_str(), nullptr));
  return finite ? number : "null";
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

}  // namespace

int ExitStatusOf(RunStatus status) {
  if (status == RunStatus::kDone) return kExitOk;
  return status == RunStatus::kNotUnderstood ? kExitUsage : kExitFailure;
}

std::string JsonOf(const RunOutcome& outcome) {
  const bool done = outcome.status == RunStatus::kDone;
  char milliseconds[40];
  std::snprintf(milliseconds, sizeof milliseconds, "%.3f", outcome.milliseconds);
  return "{\"input\": " + JsonText(outcome.input) + ", \"output\": " + JsonText(outcome.output) +
         ", \"call\": " + TextOrNull(outcome.call) +
         ", \"width\": " + (done ? std::to_string(outcome.width) : "null") +
         ", \"height\": " + (done ? std::to_string(outcome.height) : "null") +
         ", \"milliseconds\": " + (outcome.timed ? milliseconds : "null") +
         ", \"yields\": " + std::to_string(outcome.yields) +
         ", \"number\": " + NumberOrNull(outcome.number) + ", \"status\": \"" +
         NameOf(outcome.status) + "\", \"error\": " + TextOrNull(Joined(outcome.faults)) + "}";
}

void Write(std::ostream& out, const RunOutcome& outcome) {
  out << int(outcome.status) << ' ' << std::quoted(outcome.call) << ' ' << outcome.width << ' '
      << outcome.height << ' ' << outcome.timed << ' ' << std::setprecision(17)
      << outcome.milliseconds << ' ' << outcome.yields << ' ' << std::quoted(outcome.number) << ' '
      << outcome.faults.size();
  for (const std::string& fault : outcome.faults) out << ' ' << std::quoted(fault);
  out << '\n';
}

bool Read(std::istream& in, RunOutcome& outcome) {
  int status = 0;
  std::size_t faults = 0;
  in >> status >> std::quoted(outcome.call) >> outcome.width >> outcome.height >> outcome.timed >>
      outcome.milliseconds >> outcome.yields >> std::quoted(outcome.number) >> faults;
  outcome.status = RunStatus(status);
  for (; in && faults > 0; --faults) {
    std::string fault;
    in >> std::quoted(fault);
    outcome.faults.push_back(fault);
  }
  return bool(in);
}

}  // namespace tool
