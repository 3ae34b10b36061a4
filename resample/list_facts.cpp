#include "resample/list_facts.h"

#include <cmath>
#include <cstring>

namespace {

constexpr std::int32_t kWidestMean = 4096;  // pixels

// Whether the definition's channel is the mean of neighbouring pixels, a half rounded up. Single
// precision gives the same, divided with a reciprocal: (sum + count/2 + 1/4) is exact, the quotient
// at least 1/4 / kWidestMean away from the integers next to it, and off by less than 2^-14.
bool IsMean(const ContributionList& list) {
  if (list.count == 0) return true;
  if (list.count > kWidestMean || static_cast<double>(list.total) != list.count ||
      LastPixel(list) - FirstPixel(list) != list.count - 1) {
    return false;
  }
  for (std::int32_t k = 0; k < list.count; ++k) {
    if (list.entries[k].weight != 1.0F) return false;
  }
  return true;
}

}  // namespace

Extremes ExtremesOf(const ContributionList& list) {
  Extremes extremes;
  const double reciprocal = ReciprocalOf(list);
  for (std::int32_t k = 0; k < list.count; ++k) {
    const double n = std::fabs(list.entries[k].weight * reciprocal);
    if (n > extremes.weight) extremes.weight = n;
    extremes.sum += n;
  }
  return extremes;
}

// All sums are multiples of total / 2^bits then, with factors of 29 bits at most, and total has 24:
// no more than the 53 of doubles. A weight of 16 bits has exact products with channels in single
// precision, too.
bool IsExact(const ContributionList& list, std::int32_t bits) {
  const double reciprocal = ReciprocalOf(list);
  for (std::int32_t k = 0; k < list.count; ++k) {
    const float weight = list.entries[k].weight;
    std::uint32_t word = 0;
    std::memcpy(&word, &weight, sizeof word);
    const double scaled = weight * reciprocal * PowerOfTwo(bits);
    const bool isMultiple = scaled == Rounded(scaled) &&
                            scaled * static_cast<double>(list.total) == weight * PowerOfTwo(bits);
    if ((word & 0xFFU) != 0 || !isMultiple) return false;
  }
  return true;
}

bool AreMeans(const ContributionList* lists, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    if (!IsMean(lists[i])) return false;
  }
  return true;
}

bool AreAlike(const ContributionList& a, const ContributionList& b) {
  if (a.count == 0 || a.count != b.count || !(a.total == b.total)) return false;
  const std::int32_t moved = FirstPixel(a) - FirstPixel(b);
  for (std::int32_t k = 0; k < a.count; ++k) {
    if (a.entries[k].weight != b.entries[k].weight) return false;
    if (a.entries[k].pixel - b.entries[k].pixel != moved) return false;
  }
  return true;
}
