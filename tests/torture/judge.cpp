#include "tests/torture/judge.h"

#include <algorithm>

namespace torture {

namespace {

bool IsNilDrawing(const Scenario& scenario) {
  return scenario.variant.method == Method::kDraw &&
         (scenario.variant.special == Special::kNilReceiver ||
          scenario.variant.special == Special::kNilPicture);
}

std::string Listed(const HoldingsByObject& holdings) {
  std::string text;
  for (const auto& [number, held] : holdings) {
    text += " #" + std::to_string(number) + ": " + std::to_string(held.references) +
            " references, " + std::to_string(held.locks) + " locks;";
  }
  return text.empty() ? " nothing" : text;
}

// The object in brackets of a trace line: "Picture#3".
std::string ObjectOf(const std::string& line) {
  const std::size_t first = line.find('(');
  const std::size_t last = line.find_first_of(",)", first);
  return first == std::string::npos ? "" : line.substr(first + 1, last - first - 1);
}

bool SameRaised(const std::vector<host::RaisedException>& a,
                const std::vector<host::RaisedException>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
    return x.className == y.className && x.hasMessage == y.hasMessage && x.message == y.message &&
           x.errorNumber == y.errorNumber;
  });
}

}  // namespace

bool IsSilent(const std::string& entry) {
  return entry == "REALLockObject" || entry == "REALUnlockObject" ||
         entry == "unlockPictureDescription" || entry == "REALPictureClearCache" ||
         entry == "REALYieldToRB" || entry == "REALUnlockString" ||
         entry == "REALSetStringEncoding";
}

Judge::Judge(Stage& stage)
    : scenario_(stage.Subject()), due_(stage), undisturbed_(stage.Run({}, true)) {}

std::string Judge::Integrity(const Outcome& outcome, bool countsLocks) const {
  std::string wrong;
  for (const std::string& damage : outcome.damage) wrong += damage + "\n";
  HoldingsByObject owed = outcome.owed;
  if (outcome.refusedLocks > 0) owed[1].locks += outcome.refusedLocks;
  if (countsLocks && owed != outcome.left) {
    wrong += "left over:" + Listed(outcome.left) + " instead of" + Listed(owed) + "\n";
  }
  // A picture whose description could not be unlocked goes while it is locked.
  const bool unlockFailed = outcome.failed.contains("unlockPictureDescription");
  for (const std::string& violation : outcome.violations) {
    if (unlockFailed && violation.find("lost its last reference while") != std::string::npos) {
      continue;
    }
    wrong += violation + "\n";
  }
  return wrong;
}

std::string Judge::RaisedWrongly(const Outcome& outcome) const {
  if (!IsNilDrawing(scenario_)) return outcome.raised.empty() ? "" : "something was raised\n";
  if (outcome.raised.size() > 1) return "more than one exception was raised\n";
  if (outcome.raised.empty()) {
    return outcome.failed.contains("PluginNewInstance") ||
                   outcome.failed.contains("RuntimeRaiseException")
               ? ""
               : "nothing was raised\n";
  }
  const host::RaisedException& raised = outcome.raised.front();
  const bool noClass = outcome.failed.contains("PluginNewInstance");
  const bool noMessage = outcome.failed.contains("REALBuildString") ||
                         outcome.failed.contains("REALSetPropValueString");
  const bool noNumber = outcome.failed.contains("REALSetPropValueInteger");
  const char* message =
      scenario_.variant.special == Special::kNilReceiver ? "source is nil" : "picture is nil";
  if (raised.className != (noClass ? "RuntimeException" : "NilObjectException")) {
    return "class " + raised.className + "\n";
  }
  if (raised.hasMessage == noMessage || (raised.hasMessage && raised.message != message)) {
    return "message \"" + raised.message + "\"\n";
  }
  if (raised.errorNumber != (noNumber ? -1 : 0)) return "error number\n";
  return "";
}

std::string Judge::SameAsUndisturbed(const Outcome& outcome) const {
  const std::string difference = due_.Undisturbed().DifferenceTo(outcome);
  if (!difference.empty()) return difference + "\n";
  return SameRaised(outcome.raised, undisturbed_.raised) ? "" : "raised something else\n";
}

std::string Judge::OnUndisturbed() const {
  return Integrity(undisturbed_, true) + SameAsUndisturbed(undisturbed_) +
         RaisedWrongly(undisturbed_);
}

// Whether a failure may leave the method without a result.
bool Judge::MayFail(const Outcome& outcome) const {
  const Variant& variant = scenario_.variant;
  const Answer answer = due_.Undisturbed().answer;
  if (answer == Answer::kNil || answer == Answer::kFalse) return true;
  const auto failed = [&](const char* entry) { return outcome.failed.contains(entry); };
  const bool makesAlpha =
      variant.alpha && (variant.method == Method::kScale || variant.method == Method::kResample);
  if (failed("newPicture") || failed("REALLockPictureDescription")) return true;
  if (makesAlpha && (failed("PluginNewInstance") || failed("Constructor"))) return true;
  if (makesAlpha && failed("REALLoadObjectMethod")) return true;
  // Taken for an opaque picture first, then found to have an alpha channel.
  const bool reread = variant.method == Method::kScaleBoth && variant.alpha;
  if (reread && failed("REALGetPropValueBool") && scenario_.version < 2011.04) return true;
  return variant.hidden && failed("REALGetPropValueInteger");
}

// Whether the one new picture that the method makes could not be made.
bool Judge::MustFail(const Fault& fault, const Outcome& outcome) const {
  const Variant& variant = scenario_.variant;
  if (fault.entry == 0 || fault.entriesAfter || variant.hidden || variant.smooth) return false;
  if (variant.method == Method::kScaleBoth || variant.method == Method::kDraw) return false;
  return outcome.failed.contains("newPicture") || outcome.failed.contains("PluginNewInstance") ||
         outcome.failed.contains("Constructor");
}

std::string Judge::Result(const Fault& fault, const Outcome& outcome) const {
  const bool onlySilent = std::all_of(outcome.failed.begin(), outcome.failed.end(), IsSilent);
  if (fault.allocation != 0 && outcome.failed.empty()) {
    const std::string difference =
        due_.WithoutAllocation(fault.allocation, fault.allocationsAfter).DifferenceTo(outcome);
    return difference.empty() ? "" : difference + "\n";
  }
  if (fault.allocation == 0 && onlySilent) return SameAsUndisturbed(outcome);
  if (MustFail(fault, outcome)) return outcome.answer == Answer::kNil ? "" : "a result\n";
  const bool draws = scenario_.variant.method == Method::kDraw;
  if (outcome.answer == (draws ? Answer::kFalse : Answer::kNil)) {
    // Nothing may have been drawn then.
    if (draws && outcome.receiver != due_.Before()) return "the receiver was changed\n";
    return MayFail(outcome) || fault.allocation != 0 ? "" : "no result\n";
  }
  if (due_.Allows(outcome, outcome.failed.contains("REALGetPropValueBool"))) return "";
  return "a result that is none of the documented ones; undisturbed: " +
         due_.Undisturbed().DifferenceTo(outcome) + "\n";
}

std::string Judge::OnFailure(const Fault& fault, const Outcome& outcome) const {
  return Integrity(outcome, true) + Result(fault, outcome) + RaisedWrongly(outcome);
}

bool Judge::InRelease(int call) const {
  const auto index = static_cast<std::size_t>(call) - 1;
  const HostCall& made = undisturbed_.calls[index];
  const std::string before = index == 0 ? "" : undisturbed_.calls[index - 1].line;
  if (made.entry == "REALUnlockObject" || made.entry == "REALUnlockString") return true;
  if (made.entry == "unlockPictureDescription") {
    // Hosts below 2012.0 are asked to unlock what could not be locked.
    return !(before.starts_with("REALLockPictureDescription") && before.ends_with(" = 0") &&
             ObjectOf(before) == ObjectOf(made.line));
  }
  // A release clears the cache after the picture's own description was unlocked.
  return made.entry == "REALPictureClearCache" && before.starts_with("unlockPictureDescription") &&
         ObjectOf(before) == ObjectOf(made.line);
}

bool Judge::IsGuarded(int call) const {
  const std::string& entry = undisturbed_.calls[static_cast<std::size_t>(call) - 1].entry;
  return entry == "REALBuildString" || entry == "REALSetStringEncoding" ||
         entry == "REALBuildStringWithEncoding" || entry == "REALConvertString";
}

std::string Judge::OnThrow(const Fault& fault, const Outcome& outcome) const {
  std::string wrong;
  std::string expected = "a yield that threw";
  Outcome judged = outcome;
  if (fault.thrower != 0) {
    const auto index = static_cast<std::size_t>(fault.thrower) - 1;
    const HostCall& made = undisturbed_.calls[index];
    expected = made.entry + " that threw";
    if (IsGuarded(fault.thrower)) {
      if (outcome.answer != Answer::kFalse) wrong += "the string builder let it pass\n";
      if (outcome.raised.size() != 2 || outcome.raised[0].className != "RuntimeException" ||
          outcome.raised[0].message != expected ||
          outcome.raised[1].className != "NilObjectException" || outcome.raised[1].hasMessage) {
        wrong += "was not raised as a host exception\n";
      }
      return wrong + Integrity(judged, true);
    }
    if (made.entry == "unlockPictureDescription") {  // only a half-made lock is unlocked so
      ++judged.owed[made.object].locks;
    }
  }
  if (outcome.answer != Answer::kThrown) wrong += "nothing passed out\n";
  if (outcome.thrown != expected) wrong += "\"" + outcome.thrown + "\" passed out\n";
  const bool raises = fault.thrower != 0 && IsNilDrawing(scenario_) && outcome.raised.size() <= 1;
  if (!outcome.raised.empty() && !raises) wrong += "something was raised\n";
  if (scenario_.variant.method == Method::kDraw && !outcome.receiver.words.empty()) {
    // Whole rows were drawn, from the top.
    const oracle::Image& drawn = due_.Undisturbed().receiver;
    bool untouched = false;
    for (int y = 0; y < drawn.height; ++y) {
      bool isDrawn = true, isOld = true;
      for (int x = 0; x < drawn.width; ++x) {
        isDrawn = isDrawn && outcome.receiver.At(x, y) == drawn.At(x, y);
        isOld = isOld && outcome.receiver.At(x, y) == due_.Before().At(x, y);
      }
      if (!isOld && (untouched || !isDrawn)) wrong += "row " + std::to_string(y) + "\n";
      untouched = untouched || isOld;
    }
  }
  return wrong + Integrity(judged, true);
}

std::string Judge::OnUncountable(const Outcome& outcome) const {
  std::string wrong;
  Answer expected = due_.Undisturbed().answer;
  if (expected == Answer::kPicture) expected = Answer::kNil;
  if (expected == Answer::kTrue) expected = Answer::kFalse;
  if (outcome.answer != expected) wrong += "another answer\n";
  if (outcome.receiver != due_.Before()) wrong += "the receiver was changed\n";
  Outcome judged = outcome;
  if (expected == Answer::kReceiver) --judged.owed[1].references;
  return wrong + Integrity(judged, true) + RaisedWrongly(outcome);
}

std::string Judge::OnWithheld(const std::string& name, const Outcome& without,
                              const Outcome& failing) const {
  std::string wrong;
  for (const std::string& damage : without.damage) wrong += damage + "\n";
  if (without.answer != failing.answer) wrong += "another answer\n";
  if (without.image != failing.image || without.mask != failing.mask ||
      without.hasAlpha != failing.hasAlpha || without.receiver != failing.receiver) {
    wrong += "another picture\n";
  }
  if (without.left != failing.left) {
    wrong += "left over:" + Listed(without.left) + " instead of" + Listed(failing.left) + "\n";
  }
  if (!SameRaised(without.raised, failing.raised)) wrong += "other exceptions\n";
  if (without.allocations != failing.allocations) wrong += "other allocations\n";
  auto calls = failing.entryCalls;
  calls.erase(name);
  if (without.entryCalls != calls) wrong += "other host calls\n";
  // Hosts below 2012.0 are asked to unlock what could not be locked, here without any lock.
  const bool oldLock = name == "REALLockPictureDescription" && scenario_.version < 2012.0;
  if (!oldLock && without.violations.size() != failing.violations.size()) {
    for (const std::string& violation : without.violations) wrong += violation + "\n";
  }
  return wrong;
}

}  // namespace torture
