// What a call left to see, in pictures, book and trace.
#include "tests/torture/holdings.h"
#include "tests/torture/stage.h"

namespace torture {

using host::Picture;

namespace {

void CheckUnchanged(const Picture* picture, const oracle::Image& before, const char* name,
                    std::vector<std::string>& damage) {
  if (picture == nullptr) return;
  if (!picture->Alive()) {
    damage.push_back(std::string(name) + " is gone");
    return;
  }
  const std::string difference = support::Difference(before, support::ImageOf(*picture));
  if (!difference.empty()) damage.push_back(std::string(name) + " was changed " + difference);
}

void CheckPadding(const Picture* picture, const char* name, std::vector<std::string>& damage) {
  if (picture == nullptr || !picture->Alive()) return;
  if (picture->DamagedPadding() > 0) damage.push_back("padding of the " + std::string(name));
}

}  // namespace

// The answer, and what can be seen in the pictures.
void Stage::Observe(const host::CallReport& report, Outcome& outcome) const {
  const Picture* result = report.ResultPicture();
  if (outcome.answer == Answer::kThrown) {
    result = nullptr;
  } else if (result != nullptr) {
    outcome.answer = result == pictures_.receiver ? Answer::kReceiver : Answer::kPicture;
  } else if (const bool* flag = std::get_if<bool>(&report.result)) {
    outcome.answer = *flag ? Answer::kTrue : Answer::kFalse;
  } else {
    outcome.answer = Answer::kNil;
  }
  if (outcome.answer == Answer::kPicture) {
    outcome.hasAlpha = result->HasAlphaChannel();
    outcome.image = ImageOrNone(result);
    CheckPadding(result, "result", outcome.damage);
    if (result->Mask() != nullptr) {
      outcome.mask = ImageOrNone(result->Mask());
      CheckPadding(result->Mask(), "result's mask", outcome.damage);
    }
  }
  outcome.receiver = ImageOrNone(pictures_.receiver);
  if (scenario_.variant.method != Method::kDraw) {
    CheckUnchanged(pictures_.receiver, before_[0], "the receiver", outcome.damage);
  }
  CheckUnchanged(pictures_.source, before_[1], "the source", outcome.damage);
  CheckUnchanged(pictures_.sourceMask, before_[2], "the mask", outcome.damage);
  CheckUnchanged(pictures_.bystander, before_[3], "the bystander", outcome.damage);
  CheckPadding(pictures_.receiver, "receiver", outcome.damage);
  CheckPadding(pictures_.source, "source", outcome.damage);
  CheckPadding(pictures_.sourceMask, "mask", outcome.damage);
}

void Stage::CompareHoldings(const host::Ledger::Snapshot& before, const Picture* result,
                            const std::set<int>& keptBefore, const std::set<int>& kept,
                            Outcome& outcome) {
  const auto& objects = Host().Book().Objects();
  const host::Ledger::Snapshot after = Host().Book().Take();
  for (std::size_t i = first_; i < objects.size(); ++i) {
    const int absolute = static_cast<int>(i) + 1;
    if (i >= first_ + own_ && i < base_) continue;  // of earlier calls
    const int number = NumberInCall(absolute);
    const auto now = after.find(absolute);
    const auto earlier = before.find(absolute);
    Holdings left = now == after.end() ? Holdings() : FreeHoldings(now->second);
    if (now == after.end()) {
      outcome.owed.erase(number);  // what was owed on it ended with it
    } else if (kept.contains(absolute) && !keptBefore.contains(absolute)) {
      left.references -= kKeeping;
    }
    if (earlier != before.end()) {
      const Holdings had = FreeHoldings(earlier->second);
      left.references -= had.references;
      left.locks -= had.locks;
    }
    if (objects[i].get() == result && outcome.answer != Answer::kThrown) --left.references;
    if (left != Holdings()) outcome.left[number] = left;
  }
  std::erase_if(outcome.owed, [](const auto& owed) { return owed.second == Holdings(); });
}

void Stage::ReadTrace(Outcome& outcome) const {
  const std::vector<std::string> lines = host::Runtime::Current().Calls().Calls();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const int object = NumberInCall(ObjectNumber(lines[i]));
    if (i < outcome.calls.size()) {
      outcome.calls[i].line = lines[i];
      outcome.calls[i].object = object;
    }
    const bool locked = lines[i].starts_with("REALLockPictureDescription") &&
                        lines[i].ends_with(", 8) = 1") && object == 1;
    if (locked && scenario_.variant.special == Special::kRefused) ++outcome.refusedLocks;
  }
}

}  // namespace torture
