#include "tests/torture/stage.h"

#include <algorithm>

#include "tests/support/allocation_faults.h"
#include "tests/support/random.h"
#include "tests/torture/holdings.h"

namespace torture {

namespace {

using host::Picture;

constexpr char kKeeper[] = "keeper";

std::string Position(int number, bool andLater) {
  return std::to_string(number) + (andLater ? " and all later ones" : "");
}

}  // namespace

std::string Fault::Text() const {
  std::string text;
  if (entry != 0) text += " host call " + Position(entry, entriesAfter) + " failing";
  if (allocation != 0) text += " allocation " + Position(allocation, allocationsAfter) + " failing";
  if (!failingEntry.empty()) text += " every " + failingEntry + " failing";
  if (!withheld.empty()) text += " without " + withheld;
  if (thrower != 0) text += " host call " + std::to_string(thrower) + " throwing";
  if (yieldThrower != 0) text += " yield " + std::to_string(yieldThrower) + " throwing";
  return text.empty() ? "undisturbed" : text.substr(1);
}

Stage::Stage(const Scenario& scenario, const std::function<void(host::Runtime&)>& prepare)
    : scenario_(scenario), plugin_(OptionsOf(scenario), prepare) {
  Host().intercept = nullptr;
}

Stage::Pictures Stage::MakePictures() {
  const Variant& variant = scenario_.variant;
  host::Runtime& runtime = Host();
  support::Random random(2010);
  const auto make = [&](int width, int height, bool alpha) {
    host::PictureSpec spec =
        alpha ? runtime.NewAlphaPictureSpec(width, height) : runtime.NewPictureSpec(width, height);
    if (!alpha && !scenario_.HasBuffers()) spec.pixelFormat = 5;
    if (spec.storage == host::Storage::kHostBuffer) spec.pixelFormat = oracle::kHostBuffer;
    return support::PictureOf(runtime, random.Noise(width, height, spec.pixelFormat), spec);
  };
  Pictures pictures;
  pictures.source = make(kSourceWidth, kSourceHeight, variant.alpha);
  pictures.source->refuseLocks = variant.hidden;
  if (variant.special == Special::kRefused) {
    pictures.source->distort = [](const Picture::LockedView& view) { view.context.alphaInfo = 8; };
  }
  if (variant.mask) {
    pictures.sourceMask = make(kSourceWidth, kSourceHeight, false);
    runtime.SetMask(pictures.source, pictures.sourceMask);
  }
  pictures.receiver = pictures.source;
  if (variant.method == Method::kDraw) pictures.receiver = make(4, 3, false);
  pictures.bystander = make(2, 2, true);
  if (variant.special == Special::kNilReceiver) pictures.receiver = nullptr;
  if (variant.special == Special::kNilPicture) pictures.source = nullptr;
  return pictures;
}

std::vector<host::Value> Stage::ArgumentsFor(const Pictures& pictures) const {
  const Variant& variant = scenario_.variant;
  switch (variant.method) {
    case Method::kScale:
    case Method::kScaleBoth:
      return {variant.width, variant.height, variant.smooth, 1};
    case Method::kResample:
      return {5, variant.width, variant.height, 1};
    case Method::kDraw:
      if (pictures.source == nullptr) return {std::monostate(), 0.5, 0.25, 0.75, 1};
      return {pictures.source, 0.5, 0.25, 0.75, 1};
    case Method::kBlur:
      break;
  }
  return {variant.special == Special::kOwnSize ? 0.5 : 1.0, 1};
}

const Stage::Pictures& Stage::FreshPictures() {
  if (before_.empty()) {
    first_ = Host().Book().Objects().size();
    pictures_ = MakePictures();
    own_ = Host().Book().Objects().size() - first_;
    before_ = {ImageOrNone(pictures_.receiver), ImageOrNone(pictures_.source),
               ImageOrNone(pictures_.sourceMask), ImageOrNone(pictures_.bystander)};
  }
  return pictures_;
}

// Leaves the stage's pictures as the next call must find them, or gives them up.
void Stage::Restore(bool touched) {
  if (touched) {
    CleanUp(0);
    before_.clear();
    return;
  }
  CleanUp(base_);
  const oracle::Image& receiver = before_[0];
  if (scenario_.variant.method != Method::kDraw || receiver.words.empty()) return;
  for (int y = 0; y < receiver.height; ++y) {
    for (int x = 0; x < receiver.width; ++x) {
      pictures_.receiver->SetWord(x, y, receiver.At(x, y));
    }
  }
}

int Stage::NumberInCall(int number) const {
  const int base = static_cast<int>(base_);
  return number > base ? number - base + static_cast<int>(own_) : number - static_cast<int>(first_);
}

void Stage::NoteFailure(const std::string& entry, Outcome& outcome) {
  outcome.failed.insert(entry);
  const bool taking = entry == "REALLockObject";
  const bool giving = entry == "REALUnlockObject" || entry == "REALUnlockString";
  if (!taking && !giving && entry != "unlockPictureDescription") return;
  // An entry without a result is traced before it is asked.
  Holdings& owed = outcome.owed[NumberInCall(ObjectNumber(Host().Calls().Lines().back()))];
  if (taking) --owed.references;
  if (giving) ++owed.references;
  if (!taking && !giving) ++owed.locks;
}

void Stage::KeepNewObjects(std::set<int>& kept) {
  const auto& objects = Host().Book().Objects();
  for (std::size_t i = first_ + kept.size(); i < objects.size(); ++i) {
    for (int k = 0; k < kKeeping; ++k) Host().Book().Lock(objects[i].get(), kKeeper);
    kept.insert(static_cast<int>(i) + 1);
  }
}

void Stage::CleanUp(std::size_t objects) {
  host::Ledger& book = Host().Book();
  for (const auto& [number, held] : book.Take()) {
    if (static_cast<std::size_t>(number) <= objects) continue;
    host::Object* object = book.Objects()[static_cast<std::size_t>(number) - 1].get();
    for (int lock = book.DescriptionLocks(object); lock > 0; --lock) {
      book.UnlockDescription(object, "test", true);
    }
  }
  for (const auto& [number, held] : book.Take()) {
    if (static_cast<std::size_t>(number) <= objects) continue;
    host::Object* object = book.Objects()[static_cast<std::size_t>(number) - 1].get();
    for (int left = FreeHoldings(held).references; left > 0; --left) book.Unlock(object, "test");
  }
  book.ForgetViolations();
}

Outcome Stage::Run(const Fault& fault, bool listCalls) {
  Outcome outcome;
  if (plugin_.Library().Find(NameOf(scenario_.variant.method)) == nullptr) return outcome;
  host::Runtime& runtime = Host();
  // A reference that a host does not count without a word would leave the plug-in with pictures
  // that are gone. Such a host keeps them here.
  const bool keeps = fault.failingEntry == "REALLockObject" || fault.uncounted;
  if (keeps) Restore(true);
  const Pictures& pictures = FreshPictures();
  base_ = runtime.Book().Objects().size();
  std::set<int> kept;
  if (keeps) KeepNewObjects(kept);
  const host::Ledger::Snapshot before = runtime.Book().Take();
  const std::set<int> keptBefore = kept;
  const std::size_t raisedBefore = runtime.Raised().size();
  const int yieldsBefore = runtime.Yields();

  image_.Restore();
  runtime.Calls().Clear();
  if (!fault.withheld.empty()) runtime.Withhold(fault.withheld);
  int yields = 0;
  if (fault.yieldThrower != 0) {
    runtime.onYield = [&] {
      if (++yields == fault.yieldThrower) throw HostError("a yield that threw");
    };
  }
  std::optional<support::AllocationWatch> watch;
  runtime.intercept = [&](const host::EntryCall& call) {
    const int number = ++outcome.hostCalls;
    ++outcome.entryCalls[call.entry];
    if (keeps) KeepNewObjects(kept);
    if (listCalls) outcome.calls.push_back({call.entry, "", 0, watch->Calls()});
    if (number == fault.thrower) throw HostError(std::string(call.entry) + " that threw");
    const bool counted =
        fault.entry != 0 && (number == fault.entry || (fault.entriesAfter && number > fault.entry));
    if (!counted && fault.failingEntry != call.entry) return host::Verdict::kProceed;
    NoteFailure(call.entry, outcome);
    return host::Verdict::kFail;
  };
  const std::vector<host::Value> arguments = ArgumentsFor(pictures);
  host::CallReport report;
  watch.emplace(fault.allocation, fault.allocationsAfter);
  try {
    report = plugin_.Library().Call(NameOf(scenario_.variant.method), pictures.receiver, arguments);
  } catch (const HostError& error) {
    outcome.answer = Answer::kThrown;
    outcome.thrown = error.what();
  }
  outcome.allocations = watch->Calls();
  const int blocks = watch->LiveBlocks();
  watch.reset();
  if (blocks != 0) outcome.damage.push_back(std::to_string(blocks) + " working blocks are left");
  runtime.intercept = nullptr;
  runtime.onYield = nullptr;
  if (!fault.withheld.empty()) runtime.Offer(fault.withheld);
  outcome.yields = runtime.Yields() - yieldsBefore;
  outcome.raised.assign(runtime.Raised().begin() + static_cast<std::ptrdiff_t>(raisedBefore),
                        runtime.Raised().end());
  outcome.violations = runtime.Book().Violations();
  Observe(report, outcome);
  CompareHoldings(before, report.ResultPicture(), keptBefore, kept, outcome);
  if (scenario_.variant.special == Special::kRefused || listCalls) ReadTrace(outcome);
  const bool touched = std::any_of(outcome.left.begin(), outcome.left.end(), [&](const auto& left) {
    return left.first <= static_cast<int>(own_);
  });
  Restore(keeps || touched || !outcome.damage.empty() || !outcome.violations.empty());
  return outcome;
}

}  // namespace torture
