#include "resample/fixed_weights.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "resample/list_facts.h"

namespace {

constexpr std::int32_t kMostBits = 20;
constexpr std::int32_t kMostFineBits = 15;
constexpr double kMiddle = 127.5;  // of the channel values
constexpr double kHalf = 0.5;

// Not very large, and numbers at all.
bool AreUsual(const Extremes& extremes) { return extremes.sum < 64.0; }

// The finest scale at which weights have 16 bits and sums of 255·|n| have 29. For unusual weights
// one at which the fine window of LeaveOpen is wider than a channel.
std::int32_t BitsFor(const ContributionList& list) {
  const Extremes extremes = ExtremesOf(list);
  if (!AreUsual(extremes)) return kMostFineBits;
  std::int32_t bits = kMostBits;
  while (extremes.weight * PowerOfTwo(bits) > 32766.0 ||
         extremes.sum * PowerOfTwo(bits) > PowerOfTwo(21)) {
    --bits;
  }
  return bits;
}

// The finest scale at which the sums of 255 times fine weights, of at most half a unit, have 30.
std::int32_t FineBitsFor(std::int32_t taps) {
  std::int32_t bits = kMostFineBits;
  while (bits > 0 && taps * PowerOfTwo(bits) > PowerOfTwo(23)) --bits;
  return bits;
}

// Means of 2, 4, 8 and so on pixels are exact when shifted, too, which takes less than to divide.
bool AreHalvedAndHalved(const ContributionList* lists, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t pixels = lists[i].count;
    if (pixels < 2 || (pixels & (pixels - 1)) != 0) return false;
  }
  return true;
}

// What rounding left of a list's weights.
struct Rest {
  double sum = 0.0, size = 0.0;
  void Add(double rest) {
    sum += rest;
    size += std::fabs(rest);
  }
};

void SetHalf(std::uint32_t* pairs, std::int32_t tap, double value) {
  const auto half = static_cast<std::uint32_t>(static_cast<std::int32_t>(value)) & 0xFFFFU;
  pairs[tap / 2] |= half << (tap % 2 * 16);
}

// Where one list's weights go.
struct Place {
  FixedHead* head;
  std::uint32_t* coarse;
  std::uint32_t* fine;
  float* weights;
  double fineScale;
};

Place PlaceOf(const FixedWeights& fixed, std::int32_t index) {
  const auto at = static_cast<std::size_t>(index) * static_cast<std::size_t>(fixed.pairs);
  return {fixed.heads + index, fixed.coarse + at, fixed.fine + at, fixed.weights + 2 * at,
          PowerOfTwo(fixed.fineBits)};
}

// Writes the weights as they are and, times `factor`, as integers. Adds up what those leave.
void FixTaps(const ContributionList& list, double factor, const Place& place, Rest& coarseRest,
             Rest& fineRest) {
  for (std::int32_t k = 0; k < list.count; ++k) {
    const float weight = list.entries[k].weight;
    const std::int32_t tap = list.entries[k].pixel - 2 * place.head->firstPair;
    const double scaled = weight * factor;
    const double coarse = Rounded(scaled);
    const double rest = (scaled - coarse) * place.fineScale;
    const double fine = Rounded(rest);
    place.weights[tap] = weight;
    SetHalf(place.coarse, tap, coarse);
    SetHalf(place.fine, tap, fine);
    coarseRest.Add(scaled - coarse);
    fineRest.Add(rest - fine);
  }
}

// Sums that say nothing, at either level.
void LeaveOpen(const ContributionList& list, const Place& place) {
  Rest ignored;
  FixTaps(list, 0.0, place, ignored, ignored);
  place.head->window = 1 << place.head->bits;
  place.head->fineWindow = 1 << 30;
}

// What a sum may be off by, with ample 3 for what is rounded here. `floats`: what the definition's
// floats and n may be off by, times the scale.
std::int32_t Allowance(const Rest& rest, double floats) {
  return static_cast<std::int32_t>(kMiddle * rest.size + 3.0 + floats);
}

// The list's head has its place and scale.
void FixList(const ContributionList& list, const Place& place) {
  const Extremes extremes = ExtremesOf(list);
  if (!AreUsual(extremes)) return LeaveOpen(list, place);
  FixedHead& head = *place.head;
  const double scale = PowerOfTwo(head.bits);
  Rest coarse, fine;
  FixTaps(list, ReciprocalOf(list) * scale, place, coarse, fine);
  head.upper = static_cast<std::int32_t>(Rounded(kHalf * scale + kMiddle * coarse.sum));
  if (IsExact(list, head.bits)) return;
  // Products are rounded to single precision, and there are a few more operations in doubles than
  // taps, on sums up to 255 times that of |n|.
  const double floats =
      255.0 * extremes.sum * scale * (1.0 / PowerOfTwo(24) + (list.count + 8.0) / PowerOfTwo(52));
  const std::int32_t allowance = Allowance(coarse, floats);
  const std::int32_t fineAllowance = Allowance(fine, floats * place.fineScale);
  head.upper += allowance;
  head.window = 2 * allowance;
  head.fineUpper = static_cast<std::int32_t>(Rounded(kMiddle * fine.sum)) + fineAllowance;
  head.fineWindow = 2 * fineAllowance;
}

// Lists without taps lie where the list before lies, so that sources only move on.
void PlaceHeads(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
                FixedWeights& fixed) {
  const std::int32_t last = sourceSize / 2 + sourceSize % 2 - fixed.pairs;
  std::int32_t place = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const ContributionList& list = lists[i];
    if (list.count > 0) place = FirstPixel(list) / 2;
    FixedHead& head = fixed.heads[i];
    head = {};
    head.firstPair = place < last ? place : last;
    head.total = list.total;
    head.reciprocal = list.count > 0 ? 1.0F / list.total : 0.0F;
  }
}

void FixMeans(const ContributionList* lists, std::int32_t count, const FixedWeights& fixed) {
  Rest none;
  for (std::int32_t i = 0; i < count; ++i) FixTaps(lists[i], 1.0, PlaceOf(fixed, i), none, none);
}

// One whose pixels are even where this one's are. The lists' places must be known.
std::int32_t TwinOf(const ContributionList* lists, std::int32_t index, const FixedWeights& fixed) {
  return TwinOf(lists, index, [&](std::int32_t other) {
    if (lists[other].count == 0 || lists[index].count == 0) return false;
    const std::int32_t moved = fixed.heads[index].firstPair - fixed.heads[other].firstPair;
    return FirstPixel(lists[index]) - FirstPixel(lists[other]) == 2 * moved;
  });
}

void CopyTwin(std::int32_t index, const FixedWeights& fixed) {
  const Place place = PlaceOf(fixed, index);
  FixedHead& head = *place.head;
  const Place twin = PlaceOf(fixed, index - head.twin);
  const auto pairs = static_cast<std::size_t>(fixed.pairs);
  std::memcpy(place.coarse, twin.coarse, pairs * sizeof *place.coarse);
  std::memcpy(place.fine, twin.fine, pairs * sizeof *place.fine);
  std::memcpy(place.weights, twin.weights, 2 * pairs * sizeof *place.weights);
  head.upper = twin.head->upper;
  head.window = twin.head->window;
  head.fineUpper = twin.head->fineUpper;
  head.fineWindow = twin.head->fineWindow;
}

// A group's lists share a scale.
void FixGroup(const ContributionList* lists, std::int32_t first, std::int32_t count,
              const FixedWeights& fixed) {
  std::int32_t bits = kMostBits;
  for (std::int32_t i = first; i < first + count; ++i) {
    FixedHead& head = fixed.heads[i];
    head.twin = TwinOf(lists, i, fixed);
    head.ownBits = head.twin > 0 ? fixed.heads[i - head.twin].ownBits : BitsFor(lists[i]);
    if (head.ownBits < bits) bits = head.ownBits;
  }
  for (std::int32_t i = first; i < first + count; ++i) {
    FixedHead& head = fixed.heads[i];
    head.bits = bits;
    if (head.twin > 0 && fixed.heads[i - head.twin].bits == bits) {
      CopyTwin(i, fixed);
    } else {
      FixList(lists[i], PlaceOf(fixed, i));
    }
  }
}

}  // namespace

std::int32_t WidestList(const ContributionList* lists, std::int32_t count) {
  std::int32_t widest = 1;
  for (std::int32_t i = 0; i < count; ++i) {
    if (lists[i].count == 0) continue;
    const std::int32_t pairs = LastPixel(lists[i]) / 2 - FirstPixel(lists[i]) / 2 + 1;
    if (pairs > widest) widest = pairs;
  }
  return widest;
}

void FixWeights(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
                FixedWeights& fixed) {
  const std::size_t words = static_cast<std::size_t>(count) * static_cast<std::size_t>(fixed.pairs);
  std::memset(fixed.coarse, 0, words * sizeof *fixed.coarse);
  std::memset(fixed.fine, 0, words * sizeof *fixed.fine);
  std::memset(fixed.weights, 0, 2 * words * sizeof *fixed.weights);
  PlaceHeads(lists, count, sourceSize, fixed);
  fixed.fineBits = FineBitsFor(2 * fixed.pairs);
  fixed.areMeans = AreMeans(lists, count) && !AreHalvedAndHalved(lists, count);
  if (fixed.areMeans) return FixMeans(lists, count, fixed);
  for (std::int32_t i = 0; i < count; i += kListGroup) {
    FixGroup(lists, i, count - i < kListGroup ? count - i : kListGroup, fixed);
  }
}

bool AreTwins(const ContributionList& a, const ContributionList& b) {
  return AreAlike(a, b) && (FirstPixel(a) - FirstPixel(b)) % 2 == 0;
}

double ShareLeftOpen(const ContributionList& list) {
  if (list.count == 0 || !AreUsual(ExtremesOf(list))) return 1.0;
  const double scale = PowerOfTwo(BitsFor(list));
  const double factor = ReciprocalOf(list) * scale;
  Rest rest;
  for (std::int32_t k = 0; k < list.count; ++k) {
    const double scaled = list.entries[k].weight * factor;
    rest.Add(scaled - Rounded(scaled));
  }
  return 2.0 * kMiddle * rest.size / scale;
}

Rounding RoundingOf(const FixedWeights& fixed, std::int32_t first, std::int32_t count) {
  if (fixed.areMeans) return Rounding::kMean;
  for (std::int32_t i = first; i < first + count; ++i) {
    if (fixed.heads[i].window != 0) return Rounding::kChecked;
  }
  return Rounding::kExact;
}
