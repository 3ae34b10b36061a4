#include "bench/worker.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>

namespace bench {

namespace {

// Works that take less than this are repeated for so long.
constexpr double kRepeatedMilliseconds = 5;

// The mean of as many runs as fill the time.
Taken RunForAWhile(const Run& run, const Work& work) {
  using Clock = std::chrono::steady_clock;
  Taken sum = {Outcome::kDone};
  int runs = 0;
  const auto start = Clock::now();
  std::chrono::duration<double, std::milli> passed{};
  while (passed.count() < kRepeatedMilliseconds) {
    const Taken next = run(work);
    if (next.outcome != Outcome::kDone) return next;
    sum.milliseconds += next.milliseconds;
    sum.faults += next.faults;
    ++runs;
    passed = Clock::now() - start;
  }
  return {Outcome::kDone, sum.milliseconds / runs, sum.faults / runs};
}

// What the candidate before left in the caches gives way to what this one needs, for quick
// candidates and slow ones alike, before it counts.
Taken RunWarm(const Run& run, const Work& work) {
  const Taken first = RunForAWhile(run, work);
  return first.outcome == Outcome::kDone ? RunForAWhile(run, work) : first;
}

// The one in the middle of `count`.
Taken RunCounted(const Run& run, const Work& work, int count) {
  std::vector<Taken> all;
  for (int i = 0; i < count; ++i) {
    all.push_back(run(work));
    if (all.back().outcome != Outcome::kDone) return all.back();
  }
  const auto middle = all.begin() + count / 2;
  std::nth_element(all.begin(), middle, all.end(), [](const Taken& one, const Taken& other) {
    return one.milliseconds < other.milliseconds;
  });
  return *middle;
}

// "CANDIDATE<tab>WORK" or "CANDIDATE<tab>WORK<tab>COUNT".
struct Request {
  const Candidate* candidate = nullptr;
  std::optional<Work> work;
  int count = 0;
};

Request Understand(const std::string& line, const std::vector<Candidate>& candidates) {
  Request request;
  std::istringstream fields(line);
  std::string name, words;
  std::getline(fields, name, '\t');
  std::getline(fields, words, '\t');
  fields >> request.count;  // 0 when there is none
  for (const Candidate& candidate : candidates) {
    if (candidate.name == name) request.candidate = &candidate;
  }
  request.work = ParseWork(words);
  return request;
}

void Answer(const Taken& taken) {
  switch (taken.outcome) {
    case Outcome::kDone:
      std::cout << taken.milliseconds << ' ' << taken.faults << std::endl;
      break;
    case Outcome::kNothing:
      std::cout << '-' << std::endl;
      break;
    case Outcome::kRefused:
      std::cout << "refused" << std::endl;
      break;
    case Outcome::kDoesNotFit:
      std::cout << "does not fit" << std::endl;
      break;
  }
}

}  // namespace

long PageFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

int Serve(const std::vector<Candidate>& candidates) {
  for (std::string line; std::getline(std::cin, line);) {
    if (line == "list") {
      for (const Candidate& candidate : candidates) std::cout << candidate.name << '\t';
      std::cout << std::endl;
      continue;
    }
    const Request request = Understand(line, candidates);
    if (request.candidate == nullptr || !request.work) {
      std::cerr << "bench: not understood: " << line << std::endl;
      return 2;
    }
    try {
      const Run& run = request.candidate->run;
      Answer(request.count > 0 ? RunCounted(run, *request.work, request.count)
                               : RunWarm(run, *request.work));
    } catch (const std::bad_alloc&) {
      Answer({Outcome::kDoesNotFit});
    }
  }
  return 0;
}

}  // namespace bench
