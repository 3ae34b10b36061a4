// Whether a call came out as documented, and left nothing behind.
#pragma once

#include <string>

#include "tests/torture/due.h"

namespace torture {

class Judge {
 public:
  // Runs the scenario undisturbed once.
  explicit Judge(Stage& stage);

  const Outcome& Undisturbed() const { return undisturbed_; }

  // What is wrong with a call, in sentences; empty when all is as it should be.
  std::string OnUndisturbed() const;
  std::string OnFailure(const Fault& fault, const Outcome& outcome) const;
  std::string OnThrow(const Fault& fault, const Outcome& outcome) const;
  // A host without an entry behaves like one where it always fails, which is judged on its own.
  std::string OnWithheld(const std::string& name, const Outcome& without,
                         const Outcome& failing) const;
  // A host that cannot count references gets no pixels read or written, and its own picture back
  // without a reference.
  std::string OnUncountable(const Outcome& outcome) const;

  // Whether that host call of the undisturbed method is made by a release: what it throws ends the
  // process.
  bool InRelease(int call) const;
  // Whether a standard exception there becomes a host exception.
  bool IsGuarded(int call) const;

 private:
  std::string Integrity(const Outcome& outcome, bool countsLocks) const;
  std::string Result(const Fault& fault, const Outcome& outcome) const;
  std::string RaisedWrongly(const Outcome& outcome) const;
  std::string SameAsUndisturbed(const Outcome& outcome) const;
  bool MayFail(const Outcome& outcome) const;
  bool MustFail(const Fault& fault, const Outcome& outcome) const;

  Scenario scenario_;
  DueOutcomes due_;
  Outcome undisturbed_;
};

// The host's entries that answer nothing: a failure of theirs changes no result.
bool IsSilent(const std::string& entry);

}  // namespace torture
