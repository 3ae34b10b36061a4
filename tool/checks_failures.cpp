// A host that fails: entries that it lacks, that answer nothing, or that throw.
#include <algorithm>
#include <string_view>

#include "tool/check_bench.h"

namespace tool {
namespace {

using host::EntryCall;
using host::Verdict;

// Without these, references and locks cannot be balanced.
bool KeepsTheBooks(std::string_view entry) {
  constexpr std::string_view kEntries[] = {"REALLockObject", "REALUnlockObject", "REALUnlockString",
                                           "unlockPictureDescription"};
  return std::find(std::begin(kEntries), std::end(kEntries), entry) != std::end(kEntries);
}

bool Registers(std::string_view entry) {
  return entry.starts_with("PluginRegister") || entry == "RegisterPluginVersion" ||
         entry == "REALGetRBVersion";
}

const std::vector<host::RuntimeOptions>& Hosts() {
  using host::ApplicationKind;
  static const std::vector<host::RuntimeOptions> hosts = {
      HostOf(ApplicationKind::kDesktop, 2013.04), HostOf(ApplicationKind::kDesktop, 2011.04),
      HostOf(ApplicationKind::kConsole, 2013.04), HostOf(ApplicationKind::kConsole, 2011.04)};
  return hosts;
}

// A use with its pictures, ready to be called again and again.
struct Scene {
  Bench& bench;
  const Use& use;
  Picture* receiver;
  Picture* second;
  std::vector<std::uint32_t> receiverWords, secondWords;

  Scene(Bench& b, const Use& u, bool alpha, bool masked)
      : bench(b), use(u), receiver(b.Receiver(alpha)), second(b.Pattern(4, 3, alpha, 3)) {
    if (masked) bench.GiveMask(receiver, [](int x, int) { return 20 * x; });
    if (masked) bench.GiveMask(second, [](int x, int) { return 60 * x; });
    receiverWords = Words(*receiver);
    secondWords = Words(*second);
  }
  bool Draws() const { return std::string_view(use.method) == "DrawPictureFZVQ"; }
  host::CallReport Call(std::int32_t period = 0) {
    return bench.Try(use.method, receiver, Bench::Arguments(use, second, period));
  }
  void RequireSourcesUnchanged(const std::string& when) {
    Require(Words(*second) == secondWords, use.Text() + when + " changed a picture it only reads.");
    if (Draws()) return;
    Require(Words(*receiver) == receiverWords, use.Text() + when + " changed its source.");
  }
  void RequireClean(const host::CallReport& report, const std::string& when) {
    for (const auto& list : {report.violations, report.leftOver}) {
      if (!list.empty()) throw CheckFailed(use.Text() + when + ": " + list[0]);
    }
    RequireSourcesUnchanged(when);
  }
};

// Alternates so that each use meets pictures of every kind on one host or another.
void ForEachScene(Bench& bench, const std::function<void(Scene&)>& act) {
  for (const Use& use : Uses()) {
    for (const auto& [alpha, masked] : {std::pair{false, false}, {true, false}, {false, true}}) {
      Scene scene(bench, use, alpha, masked);
      act(scene);
    }
  }
}

void SurvivesWithheldEntries(const CheckContext& context) {
  for (const host::RuntimeOptions& options : Hosts()) {
    for (const std::string& entry : host::Runtime::EntryNames()) {
      if (Registers(entry)) continue;
      Bench bench(context, options, [&](host::Runtime& runtime) { runtime.Withhold(entry); });
      ForEachScene(bench, [&](Scene& scene) {
        const auto report = scene.Call();
        const std::string when = " without " + entry;
        // An old host owes an unlock for a failed lock, but none where there is nothing to lock
        // with.
        const bool unlocksInVain =
            options.version < 2012.0 && entry == "REALLockPictureDescription";
        if (KeepsTheBooks(entry) || unlocksInVain) {
          scene.RequireSourcesUnchanged(when);
        } else {
          scene.RequireClean(report, when);
        }
      });
    }
  }
}

void SurvivesWithheldMethods(const CheckContext& context) {
  for (const host::RuntimeOptions& options : Hosts()) {
    for (const char* method : {kDrawPictureDeclaration, kConstructorDeclaration,
                               kCopyMaskDeclaration, kAssignMaskDeclaration}) {
      Bench bench(context, options,
                  [&](host::Runtime& runtime) { runtime.WithholdHostMethod(method); });
      ForEachScene(bench, [&](Scene& scene) {
        scene.RequireClean(scene.Call(), " without the host's method");
      });
    }
  }
}

// The entries that a scene's call goes through, in order, once the plug-in knows its host.
std::vector<std::string> EntriesOf(Scene& scene, std::int32_t period) {
  scene.Call(period);
  std::vector<std::string> entries;
  scene.bench.Host().intercept = [&](const EntryCall& call) {
    entries.emplace_back(call.entry);
    return Verdict::kProceed;
  };
  scene.Call(period);
  scene.bench.Host().intercept = nullptr;
  return entries;
}

// Fails each of a scene's host calls, alone and with all that follow.
void FailEach(Scene& scene) {
  host::Runtime& runtime = scene.bench.Host();
  const std::vector<std::string> made = EntriesOf(scene, 0);
  for (const bool onwards : {false, true}) {
    for (std::size_t failing = 0; failing < made.size(); ++failing) {
      if (KeepsTheBooks(made[failing])) continue;
      std::size_t number = 0;
      runtime.intercept = [&](const EntryCall& call) {
        const bool fails = onwards ? number >= failing : number == failing;
        ++number;
        if (!fails) return Verdict::kProceed;
        return KeepsTheBooks(call.entry) ? Verdict::kProceed : Verdict::kFail;
      };
      const auto report = scene.Call();
      runtime.intercept = nullptr;
      const std::string when =
          " when its host call " + std::to_string(failing + 1) + " (" + made[failing] + ") fails";
      scene.RequireClean(report, when);
      if (scene.Draws()) continue;
      const Picture* result = report.ResultPicture();
      if (result != nullptr && result != scene.receiver) {
        Require(result->HasPixels(),
                scene.use.Text() + when + " returns a picture without pixels.");
      }
    }
  }
}

// The first call of a plug-in also looks at what its host is: fails each of its host calls.
void FailEachOfTheFirstCall(const CheckContext& context, const host::RuntimeOptions& options,
                            const Use& use) {
  for (const bool onwards : {false, true}) {
    for (std::size_t failing = 0, made = 1; failing < made; ++failing) {
      Bench bench(context, options);
      Scene scene(bench, use, false, false);
      std::size_t number = 0;
      bench.Host().intercept = [&](const EntryCall& call) {
        const bool fails = onwards ? number >= failing : number == failing;
        ++number;
        return fails && !KeepsTheBooks(call.entry) ? Verdict::kFail : Verdict::kProceed;
      };
      const auto report = scene.Call();
      made = number;
      bench.Host().intercept = nullptr;
      scene.RequireClean(report, " as the first call when its host call " +
                                     std::to_string(failing + 1) + " fails");
    }
  }
}

void SurvivesFailingEntries(const CheckContext& context) {
  for (const host::RuntimeOptions& options : Hosts()) {
    for (const char* method :
         {"ScaleZVQ", "ScaleImageAndMaskZVQ", "ScalingZVQ", "BlurZVQ", "DrawPictureFZVQ"}) {
      FailEachOfTheFirstCall(context, options, UsesOf(method).front());
    }
    Bench bench(context, options);
    ForEachScene(bench, FailEach);
  }
}

void FailedLockOnOldHostIsUnlocked(const CheckContext& context) {
  for (const double version : {2010.0, 2011.9999, 2012.0}) {
    for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole,
                            host::ApplicationKind::kNone}) {
      Bench bench(context, HostOf(kind, version));
      for (const Use& use : Uses()) {
        Picture* receiver = bench.Receiver();
        receiver->refuseLocks = true;
        bench.Call(use.method, receiver, Bench::Arguments(use, bench.Pattern(4, 3)));
        Picture* second = bench.Pattern(4, 3);
        second->refuseLocks = true;
        bench.Call(use.method, bench.Receiver(), Bench::Arguments(use, second));
      }
    }
  }
}

void UnlockablePictureIsCopied(const CheckContext& context) {
  Bench bench(context);
  for (const Use& use : Uses()) {
    if (std::string_view(use.method) == "DrawPictureFZVQ") continue;
    Picture* receiver = bench.Receiver();
    const auto report = bench.Call(use.method, receiver, Bench::Arguments(use, nullptr));
    receiver->refuseLocks = true;
    const auto copied = bench.Call(use.method, receiver, Bench::Arguments(use, nullptr));
    Require(copied.ResultPicture() != nullptr,
            use.Text() + " refuses a picture that it could read through a copy.");
    Require(Words(*copied.ResultPicture()) == Words(*report.ResultPicture()),
            use.Text() + " makes other pixels of a picture that is read through a copy.");
  }
}

struct HostThrew {
  std::size_t number;
};

// Requires that the exception comes out as it was thrown and that nothing is left behind.
void ThrowAt(Scene& scene, std::size_t number, std::string_view from) {
  const host::Ledger::Snapshot before = scene.bench.Host().Book().Take();
  const std::size_t violations = scene.bench.Host().Book().Violations().size();
  const std::string when = " when " + std::string(from) + " throws";
  bool passed = false;
  try {
    scene.Call(kAlwaysYield);
  } catch (const HostThrew& thrown) {
    passed = thrown.number == number;
  }
  scene.bench.Host().intercept = nullptr;
  Require(passed, scene.use.Text() + when + " does not let the exception pass.");
  const auto left = scene.bench.Host().Book().Differences(before, nullptr);
  if (!left.empty()) throw CheckFailed(scene.use.Text() + when + ": " + left[0]);
  const auto& misused = scene.bench.Host().Book().Violations();
  if (misused.size() > violations) {
    throw CheckFailed(scene.use.Text() + when + ": " + misused[violations]);
  }
  scene.RequireSourcesUnchanged(when);
}

// From each entry that no release calls, the yields among them.
void ThrowFromEach(Scene& scene) {
  host::Runtime& runtime = scene.bench.Host();
  const std::vector<std::string> made = EntriesOf(scene, kAlwaysYield);
  for (std::size_t throwing = 0; throwing < made.size(); ++throwing) {
    if (KeepsTheBooks(made[throwing]) || made[throwing] == "REALPictureClearCache") continue;
    std::size_t number = 0;
    runtime.intercept = [&](const EntryCall&) {
      if (number++ == throwing) throw HostThrew{throwing};
      return Verdict::kProceed;
    };
    ThrowAt(scene, throwing, made[throwing]);
  }
}

void ReleasesWhenTheHostThrows(const CheckContext& context) {
  const RushingClock clock;
  for (const host::RuntimeOptions& options : Hosts()) {
    Bench bench(context, options);
    ForEachScene(bench, ThrowFromEach);
  }
}

constexpr Check kChecks[] = {
    {"survives-every-withheld-entry",
     "Without any one host entry, no method crashes, leaks or changes a source.",
     SurvivesWithheldEntries},
    {"survives-every-withheld-host-method",
     "Without any one method of the host's objects, no method leaks or changes a source.",
     SurvivesWithheldMethods},
    {"survives-each-failing-entry",
     "When any one host call fails, alone or with all later ones, nothing leaks or is misused.",
     SurvivesFailingEntries},
    {"failed-lock-on-old-host-is-unlocked",
     "Below 2012.0 a lock that failed is unlocked all the same, from 2012.0 on it is not.",
     FailedLockOnOldHostIsUnlocked},
    {"unlockable-picture-is-copied",
     "A picture that the host cannot lock is read through a copy, with the same result.",
     UnlockablePictureIsCopied},
    {"releases-everything-when-the-host-throws",
     "What a host entry throws passes out unchanged, and everything is released on its way.",
     ReleasesWhenTheHostThrows},
};

}  // namespace

std::span<const Check> FailureChecks() { return kChecks; }

}  // namespace tool
