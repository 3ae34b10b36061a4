// The tap lists: which source pixels, which weights, how much memory.
#include "resample/contributions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "resample/kernels.h"
#include "tests/support/allocation_faults.h"

namespace {

struct Tap {
  int pixel;
  float weight;
  bool operator==(const Tap&) const = default;
};

std::vector<Tap> TapsOf(const ContributionList& list) {
  std::vector<Tap> taps;
  for (int k = 0; k < list.count; ++k)
    taps.push_back({list.entries[k].pixel, list.entries[k].weight});
  return taps;
}

template <typename Filter>
class Built : public ContributionLists {
 public:
  Built(int source, int result, Axis axis) {
    EXPECT_TRUE(Resize(result));
    Build<Filter>(source, axis);
  }
};

TEST(ContributionLists, TheTriangleBlendsTwoNeighboursWhenDoubling) {
  // 2 -> 4: centres 0.25, 0.75, 1.25, 1.75; distances to pixel centres 0.5 and 1.5.
  const Built<TriangleFilter> lists(2, 4, Axis::kAlongRows);
  EXPECT_EQ(TapsOf(lists[0]), (std::vector<Tap>{{0, 0.75F}}));
  EXPECT_EQ(TapsOf(lists[1]), (std::vector<Tap>{{0, 0.75F}, {1, 0.25F}}));
  EXPECT_EQ(TapsOf(lists[2]), (std::vector<Tap>{{0, 0.25F}, {1, 0.75F}}));
  EXPECT_EQ(TapsOf(lists[3]), (std::vector<Tap>{{1, 0.75F}}));
  EXPECT_EQ(lists[0].total, 0.75F);
  EXPECT_EQ(lists[1].total, 1.0F);
}

TEST(ContributionLists, TheBoxSpansTheWholeRowWhenShrinkingToOne) {
  const Built<BoxFilter> lists(5, 1, Axis::kAlongRows);
  EXPECT_EQ(TapsOf(lists[0]),
            (std::vector<Tap>{{0, 1.0F}, {1, 1.0F}, {2, 1.0F}, {3, 1.0F}, {4, 1.0F}}));
  EXPECT_EQ(lists[0].total, 5.0F);
}

TEST(ContributionLists, ABoxCentreBetweenTwoPixelsTakesBoth) {
  // 2 -> 3: the middle centre is 1.0, half a pixel from both.
  for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
    const Built<BoxFilter> lists(2, 3, axis);
    EXPECT_EQ(TapsOf(lists[1]), (std::vector<Tap>{{0, 1.0F}, {1, 1.0F}}));
  }
}

TEST(ContributionLists, TapsBeyondTheBorderAreAbsent) {
  // 4 -> 2 with the triangle: scale 1/2, centre 1, distances ·1/2: pixels 0..2 (and 3 is 1 - 0.75).
  const Built<TriangleFilter> lists(4, 2, Axis::kDownColumns);
  EXPECT_EQ(TapsOf(lists[0]), (std::vector<Tap>{{0, 0.75F}, {1, 0.75F}, {2, 0.25F}}));
  EXPECT_EQ(TapsOf(lists[1]), (std::vector<Tap>{{1, 0.25F}, {2, 0.75F}, {3, 0.75F}}));
  EXPECT_EQ(lists[0].total, 1.75F);
}

TEST(ContributionLists, TheBicubicDropsWhatItSearchesInVain) {
  const Built<BicubicFilter> lists(20, 40, Axis::kAlongRows);
  for (int i = 10; i < 30; ++i) EXPECT_EQ(lists[i].count, 4) << i;
}

TEST(ContributionLists, TheSixPointCubicKeepsWhatItsBordersRoundTo) {
  const Built<Cubic6Filter> lists(9, 9, Axis::kAlongRows);
  int expected = 1;
  for (double t : {1.0, 2.0, 3.0}) expected += Cubic6Filter::Value(t) != 0.0 ? 2 : 0;
  EXPECT_EQ(lists[4].count, expected);
}

struct CapacityRow {
  const char* name;
  int source, result;
  Axis axis;
  std::size_t capacity;
};

// The sizes of the blocks that one list takes, in taps.
template <typename Filter>
std::size_t CapacityOf(const CapacityRow& row) {
  ContributionLists lists;
  EXPECT_TRUE(lists.Resize(row.result));
  const support::AllocationWatch watch;
  lists.Build<Filter>(row.source, row.axis);
  return watch.Sizes().at(0) / sizeof(Contribution);
}

TEST(ContributionLists, EnlargingListsHaveFixedRoom) {
  const CapacityRow along = {"along", 3, 7, Axis::kAlongRows, 0};
  const CapacityRow down = {"down", 3, 7, Axis::kDownColumns, 0};
  EXPECT_EQ(CapacityOf<TriangleFilter>(along), 4U);
  EXPECT_EQ(CapacityOf<BoxFilter>(along), 2U);
  EXPECT_EQ(CapacityOf<BoxFilter>(down), 3U);
  EXPECT_EQ(CapacityOf<Lanczos3Filter>(along), 8U);
  EXPECT_EQ(CapacityOf<Lanczos8Filter>(down), 18U);
  EXPECT_EQ(CapacityOf<MitchellFilter>(along), 6U);
  EXPECT_EQ(CapacityOf<BicubicFilter>(down), 10U);
  EXPECT_EQ(CapacityOf<Cubic6Filter>(along), 8U);
}

TEST(ContributionLists, ShrinkingListsHaveRoomForTheirStretch) {
  // 10 -> 3: scale 0.3, half-widths 1/0.3 = 3.33 (triangle), 3/0.3 = 10 (Lanczos 3).
  EXPECT_EQ(CapacityOf<TriangleFilter>({"", 10, 3, Axis::kAlongRows, 0}), 2U * 3 + 2);
  EXPECT_EQ(CapacityOf<TriangleFilter>({"", 10, 3, Axis::kDownColumns, 0}), 8U);  // trunc(8.67)
  // 7 -> 4 with the box: 0.5·7/4 = 0.875: 2·0 + 2 along, trunc(3.75) down.
  EXPECT_EQ(CapacityOf<BoxFilter>({"", 7, 4, Axis::kAlongRows, 0}), 2U);
  EXPECT_EQ(CapacityOf<BoxFilter>({"", 7, 4, Axis::kDownColumns, 0}), 3U);
}

TEST(ContributionLists, AFailedListIsEmptyAndTheOthersAreNot) {
  ContributionLists lists;
  ASSERT_TRUE(lists.Resize(4));
  {
    const support::AllocationWatch watch(2);
    lists.Build<TriangleFilter>(2, Axis::kAlongRows);
  }
  EXPECT_EQ(lists[0].count, 1);
  EXPECT_EQ(lists[1].count, 0);
  EXPECT_EQ(lists[1].total, 0.0F);
  EXPECT_EQ(lists[2].count, 2);
}

TEST(ContributionLists, AListBeyondTheSizeRuleIsNotRequested) {
  // 8 / (1 / 2^27): 2^30 pixels on either side; 2^31 + 2 taps of 8 bytes.
  ContributionLists lists;
  ASSERT_TRUE(lists.Resize(1));
  const support::AllocationWatch watch;
  lists.Build<Lanczos8Filter>(1 << 27, Axis::kAlongRows);
  EXPECT_EQ(watch.Calls(), 0);
  EXPECT_EQ(lists[0].count, 0);
}

TEST(ContributionLists, AStretchThatIsNoNumberOfPixelsGivesAnEmptyList) {
  // 8 / (1 / 2^30): 2^33 pixels on either side fit no 32-bit number.
  for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
    ContributionLists lists;
    ASSERT_TRUE(lists.Resize(1));
    const support::AllocationWatch watch;
    lists.Build<Lanczos8Filter>(1 << 30, axis);
    EXPECT_EQ(watch.Calls(), 0);
    EXPECT_EQ(lists[0].count, 0);
  }
}

TEST(ContributionLists, HeadsAreReusedWhenTheyAreEnough) {
  ContributionLists lists;
  ASSERT_TRUE(lists.Resize(9));
  {
    const support::AllocationWatch watch;
    EXPECT_TRUE(lists.Resize(9));
    EXPECT_TRUE(lists.Resize(4));
    EXPECT_EQ(watch.Calls(), 0);
    EXPECT_TRUE(lists.Resize(10));
    EXPECT_EQ(watch.Sizes(), std::vector<std::size_t>{10 * sizeof(ContributionList)});
  }
  const support::AllocationWatch watch(1);
  EXPECT_FALSE(lists.Resize(11));
}

TEST(ContributionLists, ReusedListsStartEmpty) {
  Built<TriangleFilter> lists(2, 4, Axis::kAlongRows);
  ASSERT_TRUE(lists.Resize(3));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(lists[i].count, 0);
}

// No list that the capacities of the table cut short: for every pair of sizes each axis has all
// taps that are not 0.
template <typename Filter>
void ExpectRoomForAllTaps(Axis axis) {
  for (int source = 1; source <= 40; ++source) {
    for (int result = 1; result <= 40; ++result) {
      const Built<Filter> lists(source, result, axis);
      const TapSearch search = TapSearch::For<Filter>(source, result, axis);
      for (int i = 0; i < result; ++i) {
        const double centre = (i + 0.5) / search.scale;
        int taps = 0;
        for (int j = search.First(centre); j <= search.Last(centre, source); ++j) {
          if (Filter::Value((centre - j - 0.5) * search.stretch) != 0.0) ++taps;
        }
        ASSERT_EQ(lists[i].count, taps) << source << " -> " << result << ", " << i;
        ASSERT_LE(taps, search.capacity);
      }
    }
  }
}

TEST(ContributionLists, HaveRoomForAllTaps) {
  for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
    ExpectRoomForAllTaps<TriangleFilter>(axis);
    ExpectRoomForAllTaps<BoxFilter>(axis);
    ExpectRoomForAllTaps<Lanczos3Filter>(axis);
    ExpectRoomForAllTaps<Lanczos8Filter>(axis);
    ExpectRoomForAllTaps<MitchellFilter>(axis);
    ExpectRoomForAllTaps<BicubicFilter>(axis);
    ExpectRoomForAllTaps<Cubic6Filter>(axis);
  }
}

// Where a kernel is 0 at whole distances, a list can be a single tap between lists that reach
// farther to both sides.
template <typename Filter>
int FarthestStepBack(Axis axis) {
  int farthest = 0;
  for (int source = 1; source <= 20; ++source) {
    for (int result = 1; result <= 100; ++result) {
      const Built<Filter> lists(source, result, axis);
      int most = 0;  // of the first pixels so far
      for (int i = 0; i < result; ++i) {
        const int first = lists[i].entries[0].pixel;
        most = std::max(most, first);
        farthest = std::max(farthest, most - first);
      }
    }
  }
  return farthest;
}

TEST(ContributionLists, ReachBackBeforeListsBeforeThemByAtMostTwoPixels) {
  for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
    EXPECT_EQ(FarthestStepBack<TriangleFilter>(axis), 0);
    EXPECT_EQ(FarthestStepBack<BoxFilter>(axis), 0);
    EXPECT_EQ(FarthestStepBack<Lanczos3Filter>(axis), 0);
    EXPECT_EQ(FarthestStepBack<Lanczos8Filter>(axis), 0);
    EXPECT_EQ(FarthestStepBack<MitchellFilter>(axis), 1);
    EXPECT_EQ(FarthestStepBack<BicubicFilter>(axis), 1);
    EXPECT_EQ(FarthestStepBack<Cubic6Filter>(axis), 2);
  }
}

}  // namespace
