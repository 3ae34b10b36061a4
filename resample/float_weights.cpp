#include "resample/float_weights.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "resample/list_facts.h"

namespace {

constexpr double kLargest = 255.0;   // of the channel values
constexpr double kMostWeight = 4.0;  // of all |n|: sums have 30 bits then
// Sums of multiples of 2^-kExactBits are below 2^24 such parts then, and so exact.
constexpr std::int32_t kExactBits = 14;
constexpr double kStep = 1.0 / (1 << 24);  // what rounding to single precision takes at most, of 1

// Where one list's weights go.
struct Place {
  FloatHead* head;
  float* scaled;
  float* weights;
  Axis axis;
};

Place PlaceOf(const FloatWeights& floats, std::int32_t index, Axis axis) {
  const auto at = static_cast<std::size_t>(index) * static_cast<std::size_t>(floats.taps);
  return {floats.heads + index, floats.scaled + at, floats.weights + at, axis};
}

// Writes the weights as they are and, times `factor`, in single precision.
void FixTaps(const ContributionList& list, double factor, const Place& place) {
  const double scale = place.axis == Axis::kDownColumns ? factor * PowerOfTwo(kHalfBits) : factor;
  for (std::int32_t k = 0; k < list.count; ++k) {
    const float weight = list.entries[k].weight;
    const std::int32_t tap = list.entries[k].pixel - place.head->first;
    place.weights[tap] = weight;
    place.scaled[tap] = static_cast<float>(weight * scale);
  }
}

// What all roundings of a sum of scaled weights may take, if it starts with at most `start`.
double RoundingErrors(const ContributionList& list, double factor, double start) {
  double most = start, least = 0.0;  // that the sum can be
  double errors = 0.0;
  for (std::int32_t k = 0; k < list.count; ++k) {
    const double product = kLargest * (list.entries[k].weight * factor);
    (product > 0.0 ? most : least) += product;
    const double largest = most > -least ? most : -least;
    errors += (largest + std::fabs(product)) * kStep;  // of the addition, and of the weight
  }
  return errors;
}

void FixList(const ContributionList& list, const Place& place) {
  FloatHead& head = *place.head;
  const double all = ExtremesOf(list).sum;
  const double half = PowerOfTwo(kFloatBits - 1);
  if (!(all < kMostWeight)) {
    FixTaps(list, 0.0, place);
    head.window = 1 << kFloatBits;
    return;
  }
  const double factor = ReciprocalOf(list) * PowerOfTwo(kFloatBits);
  FixTaps(list, factor, place);
  head.start = static_cast<float>(half);
  if (IsExact(list, kExactBits)) return;
  // Products are rounded to single precision, and there are a few more operations in doubles than
  // taps, on sums up to 255 times that of |n|.
  const double definition =
      kLargest * all * PowerOfTwo(kFloatBits) * (kStep + (list.count + 8.0) / PowerOfTwo(52));
  // With ample 4 for what is rounded here and for the step to an integer.
  const double errors = RoundingErrors(list, factor, 2.0 * half) * 1.001 + definition + 4.0;
  const auto allowance = static_cast<std::int32_t>(errors);
  head.start = static_cast<float>(half + allowance);
  head.window = 2 * allowance;
}

// Lists without taps lie where the list before lies, so that sources only move on.
void PlaceHeads(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
                const FloatWeights& floats) {
  const std::int32_t last = sourceSize - floats.taps;
  std::int32_t place = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    if (lists[i].count > 0) place = FirstPixel(lists[i]);
    FloatHead& head = floats.heads[i];
    head = {};
    head.first = place < last ? place : last;
    head.total = lists[i].total;
  }
}

// Of a list whose weights lie as far behind its place.
void CopyTwin(const Place& place, const Place& twin, const FloatWeights& floats) {
  const auto taps = static_cast<std::size_t>(floats.taps);
  std::memcpy(place.scaled, twin.scaled, taps * sizeof *place.scaled);
  std::memcpy(place.weights, twin.weights, taps * sizeof *place.weights);
  place.head->window = twin.head->window;
  place.head->start = twin.head->start;
}

}  // namespace

std::int32_t WidestListInPixels(const ContributionList* lists, std::int32_t count) {
  std::int32_t widest = 1;
  for (std::int32_t i = 0; i < count; ++i) {
    if (lists[i].count == 0) continue;
    const std::int32_t pixels = LastPixel(lists[i]) - FirstPixel(lists[i]) + 1;
    if (pixels > widest) widest = pixels;
  }
  return widest;
}

void FixFloats(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
               Axis axis, FloatWeights& floats) {
  const std::size_t taps = static_cast<std::size_t>(count) * static_cast<std::size_t>(floats.taps);
  std::memset(floats.scaled, 0, taps * sizeof *floats.scaled);
  std::memset(floats.weights, 0, taps * sizeof *floats.weights);
  PlaceHeads(lists, count, sourceSize, floats);
  for (std::int32_t i = 0; i < count; ++i) {
    FloatHead& head = floats.heads[i];
    head.twin = TwinOf(lists, i, [&](std::int32_t other) {
      if (lists[other].count == 0 || lists[i].count == 0) return false;
      const std::int32_t moved = head.first - floats.heads[other].first;
      return FirstPixel(lists[i]) - FirstPixel(lists[other]) == moved;
    });
    if (head.twin > 0) {
      CopyTwin(PlaceOf(floats, i, axis), PlaceOf(floats, i - head.twin, axis), floats);
    } else {
      FixList(lists[i], PlaceOf(floats, i, axis));
    }
  }
}

Rounding RoundingOf(const FloatWeights& floats, std::int32_t first, std::int32_t count) {
  for (std::int32_t i = first; i < first + count; ++i) {
    if (floats.heads[i].window != 0) return Rounding::kChecked;
  }
  return Rounding::kExact;
}
