// When a method lets the host run, and what the host may do then.
#include "platform/linux/clocks.h"
#include "tool/check_bench.h"

namespace tool {
namespace {

void RequireYields(Bench& bench, const Use& use, Picture* receiver, int expected) {
  const RushingClock clock;
  const int before = bench.Host().Yields();
  bench.Call(use.method, receiver, Bench::Arguments(use, bench.Pattern(4, 3), kAlwaysYield));
  const int yields = bench.Host().Yields() - before;
  Require(yields == expected, use.Text() + " yielded " + std::to_string(yields) + " times, not " +
                                  std::to_string(expected) + ".");
}

void ScaleYields(const CheckContext& context) {
  Bench bench(context);
  RequireYields(bench, {"ScaleZVQ", {4, 3, false}}, bench.Receiver(), 3 + 1);
  RequireYields(bench, {"ScaleZVQ", {12, 10, false}}, bench.Receiver(), 10 + 1);
  RequireYields(bench, {"ScaleZVQ", {12, 10, true}}, bench.Receiver(), 3 + 4 * 10);
  RequireYields(bench, {"ScaleZVQ", {0, 10, false}}, bench.Receiver(), 1);
  RequireYields(bench, {"ScaleZVQ", {9, 7, false}}, bench.Receiver(), 0);
}

void BothYield(const CheckContext& context) {
  Bench bench(context);
  const Use fast = {"ScaleImageAndMaskZVQ", {4, 3, false}};
  const Use smooth = {"ScaleImageAndMaskZVQ", {12, 10, true}};
  RequireYields(bench, fast, bench.Receiver(), 3 + 1);
  RequireYields(bench, smooth, bench.Receiver(), 3 + 4 * 10);
  Picture* masked = bench.Receiver();
  bench.GiveMask(masked, [](int x, int) { return x; });
  RequireYields(bench, fast, masked, 2 * (3 + 1));
  RequireYields(bench, smooth, masked, 2 * (3 + 4 * 10));
}

void ResamplingYields(const CheckContext& context) {
  Bench bench(context);
  for (int mode = 1; mode <= 7; ++mode) {
    RequireYields(bench, {"ScalingZVQ", {mode, 5, 4}}, bench.Receiver(), 4 + 7);
    RequireYields(bench, {"ScalingZVQ", {mode, 12, 10}}, bench.Receiver(), 10 + 7);
  }
  RequireYields(bench, {"ScalingZVQ", {1, 0, 4}}, bench.Receiver(), 0);
}

void BlurYields(const CheckContext& context) {
  Bench bench(context);
  RequireYields(bench, {"BlurZVQ", {2.0}}, bench.Receiver(), 2 * 7 + 2);
  RequireYields(bench, {"BlurZVQ", {0.0}}, bench.Receiver(), 0);
}

void DrawYields(const CheckContext& context) {
  Bench bench(context);
  RequireYields(bench, {"DrawPictureFZVQ", {Value(), 1.0, 1.0, 1.0}}, bench.Receiver(), 7 + 2);
}

void NoYieldWithoutPeriod(const CheckContext& context) {
  Bench bench(context);
  const std::uint64_t readings = platform::ClockReadings();
  for (const Use& use : Uses()) {
    bench.Call(use.method, bench.Receiver(), Bench::Arguments(use, bench.Pattern(4, 3)));
    Require(bench.Host().Yields() == 0, use.Text() + " yielded without a period.");
    Require(platform::ClockReadings() == readings, use.Text() + " read a clock without a period.");
  }
}

// Yields of a use with clocks that stand still.
int YieldsAt(Bench& bench, const Use& use, std::int32_t period, std::uint32_t ticks,
             std::uint64_t nanoseconds) {
  platform::SetClockScript({[=] { return ticks; }, [=] { return nanoseconds; }});
  const int before = bench.Host().Yields();
  bench.Call(use.method, bench.Receiver(), Bench::Arguments(use, bench.Pattern(4, 3), period));
  platform::ClearClockScript();
  return bench.Host().Yields() - before;
}

void PeriodsAreKept(const CheckContext& context) {
  Bench bench(context);
  constexpr std::uint64_t kMillisecond = 1000000;
  struct Case {
    std::int32_t period;
    std::uint32_t ticks;
    std::uint64_t nanoseconds;
    int yields;  // only the first point can be due while the clock stands still
  };
  const Case cases[] = {{60, 60, 0, 1},
                        {60, 59, 1u << 30, 0},
                        {60, std::uint32_t(-60), 0, 1},
                        {-20, 0, 20 * kMillisecond, 1},
                        {-20, 1000, 20 * kMillisecond - 1, 0},
                        {-20, 1000, (std::uint64_t{1} << 31) * kMillisecond, 0}};
  for (const Use& use : Uses()) {
    for (const Case& each : cases) {
      const int yields = YieldsAt(bench, use, each.period, each.ticks, each.nanoseconds);
      Require(yields == each.yields,
              use.Text() + " with the period " + std::to_string(each.period) + " yielded " +
                  std::to_string(yields) + " times, not " + std::to_string(each.yields) + ".");
    }
  }
}

void SurvivesAHostWithoutYields(const CheckContext& context) {
  Bench bench(context, {}, [](host::Runtime& runtime) { runtime.Withhold("REALYieldToRB"); });
  const RushingClock clock;
  for (const Use& use : Uses()) {
    bench.Call(use.method, bench.Receiver(), Bench::Arguments(use, bench.Pattern(4, 3), 1));
  }
}

// A use with its pictures. The pictures are made beforehand, so that a call made while another one
// yields leaves nothing behind in that one's books.
struct Cast {
  const Use& use;
  Picture* receiver;
  Picture* second;

  Cast(Bench& bench, const Use& u)
      : use(u), receiver(bench.Receiver()), second(bench.Pattern(4, 3)) {}
  // The words of the result, or of the receiver where that is drawn into.
  std::vector<std::uint32_t> Play(Bench& bench, std::int32_t period) const {
    const auto report = bench.Call(use.method, receiver, Bench::Arguments(use, second, period));
    Picture* result = report.ResultPicture();
    auto words = Words(result != nullptr ? *result : *receiver);
    if (result != nullptr) bench.Host().Release(result, "picturehost");
    return words;
  }
};

void NestedCalls(const CheckContext& context) {
  Bench bench(context);
  std::vector<std::vector<std::uint32_t>> alone;
  for (const Use& use : Uses()) alone.push_back(Cast(bench, use).Play(bench, 0));
  const RushingClock clock;
  for (std::size_t outer = 0; outer < Uses().size(); ++outer) {
    for (std::size_t inner = 0; inner < Uses().size(); ++inner) {
      const Cast outerCast(bench, Uses()[outer]), innerCast(bench, Uses()[inner]);
      bool nested = false, same = true;
      bench.Host().onYield = [&] {
        if (nested) return;
        nested = true;
        same = innerCast.Play(bench, kAlwaysYield) == alone[inner];
      };
      const bool outerSame = outerCast.Play(bench, kAlwaysYield) == alone[outer];
      bench.Host().onYield = nullptr;
      Require(nested, Uses()[outer].Text() + " did not yield.");
      Require(same && outerSame, Uses()[inner].Text() + " called while " + Uses()[outer].Text() +
                                     " yields makes one of the two differ.");
    }
  }
}

constexpr Check kChecks[] = {
    {"scale-yield-count",
     "ScaleZVQ yields once a row and at its end; smoothly 4 times a row and 3.", ScaleYields},
    {"image-and-mask-yield-count",
     "ScaleImageAndMaskZVQ yields as ScaleZVQ does, for the picture and for its mask.", BothYield},
    {"resampling-yield-count", "ScalingZVQ yields once a row of its result and 7 times more.",
     ResamplingYields},
    {"blur-yield-count", "BlurZVQ yields twice a row and twice more.", BlurYields},
    {"draw-yield-count", "DrawPictureFZVQ yields once a row of the receiver and twice more.",
     DrawYields},
    {"no-yield-without-period", "With the period 0 no method yields or reads a clock.",
     NoYieldWithoutPeriod},
    {"periods-are-kept",
     "A positive period counts ticks, a negative one milliseconds, and none is cut short.",
     PeriodsAreKept},
    {"survives-a-host-without-yields", "A host that cannot be yielded to does not disturb.",
     SurvivesAHostWithoutYields},
    {"nested-calls", "A method called while another one yields disturbs neither.", NestedCalls},
};

}  // namespace

std::span<const Check> YieldChecks() { return kChecks; }

}  // namespace tool
