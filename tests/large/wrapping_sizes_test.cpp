// Sizes that no host can make, and whose products wrap in 32 bits into small ones.
#include <climits>

#include "tests/large/limit_stage.h"
#include "tests/support/allocation_faults.h"

namespace large {

namespace {

using Values = std::vector<host::Value>;

// Opaque, they are beyond 32767; with an alpha channel, beyond what the host can make. Width times
// height, with or without 4 bytes a pixel, wraps to 0, to a small number or to a negative one.
constexpr Size kImpossible[] = {{65536, 65536},
                                {65536, 32768},
                                {32768, 65536},
                                {46341, 46341},
                                {46342, 92682},
                                {INT_MAX, 2},
                                {2, INT_MAX},
                                {INT_MAX, 1},
                                {INT_MAX, INT_MAX},
                                {1 << 30, 4},
                                {1 << 30, 1},
                                {1 << 28, 1},
                                {-1, -1},
                                {-1, 5},
                                {5, -1},
                                {INT_MIN, INT_MIN},
                                {INT_MIN, 1},
                                {1, INT_MIN},
                                {INT_MIN, INT_MAX},
                                {-65536, -65536},
                                {0, 0},
                                {0, 5},
                                {5, 0},
                                {65536, 65537},
                                {-65535, 65537}};

// Nil, nothing held, no working memory left, nothing changed.
void ExpectNil(LimitStage& stage, const char* method, host::Picture* source, const Values& values) {
  host::CallReport report;
  int left = 0;
  {
    const support::AllocationWatch watch;
    report = stage.Library().Call(method, source, values);
    left = watch.LiveBlocks();
  }
  EXPECT_EQ(report.result, host::Value()) << method;
  EXPECT_EQ(support::Complaints(report), "") << method;
  EXPECT_EQ(left, 0) << method;
}

template <typename Judge>
void ForEachHost(const Judge& judge) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const bool hasAlpha : {false, true}) {
      LimitStage stage(kind);
      host::Picture* source = stage.Make({5, 4}, 71, hasAlpha);
      host::Picture* mask = stage.Make({5, 4}, 72);
      stage.Host().SetMask(source, mask);
      judge(stage, source);
      EXPECT_EQ(Pattern(71).Changed(*source), "");
      EXPECT_EQ(Pattern(72).Changed(*mask), "");
      EXPECT_TRUE(stage.Host().Raised().empty());
    }
  }
}

TEST(ImpossibleSizes, GiveNilInBothScalingMethods) {
  ForEachHost([](LimitStage& stage, host::Picture* source) {
    for (const Size to : kImpossible) {
      SCOPED_TRACE(Text(to));
      for (const bool antiAlias : {false, true}) {
        ExpectNil(stage, "ScaleZVQ", source, {to.width, to.height, antiAlias});
        ExpectNil(stage, "ScaleImageAndMaskZVQ", source, {to.width, to.height, antiAlias});
      }
    }
  });
}

TEST(ImpossibleSizes, GiveNilInEveryModeOfScalingZVQ) {
  ForEachHost([](LimitStage& stage, host::Picture* source) {
    int mode = 0;
    for (const Size to : kImpossible) {
      SCOPED_TRACE(Text(to));
      mode = mode % 7 + 1;
      ExpectNil(stage, "ScalingZVQ", source, {mode, to.width, to.height});
    }
  });
}

// The intermediate image has the new width and the source's height: 4 bytes a pixel wrap to 65536,
// 0, a small number; the last is 2^31, one byte too many.
TEST(WrappingIntermediateImages, AreRefusedBeforeAnythingIsAllocated) {
  const struct {
    int sourceHeight, width;
  } rows[] = {{65537, 16384},  {65536, 16384}, {65536, 65536}, {46341, 46341},
              {131073, 32767}, {4, INT_MAX},   {3, 715827883}, {32768, 16384},
              {4, 1 << 28},    {4, 1 << 27},   {65539, 32766}};
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const bool hasAlpha : {false, true}) {
      for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.sourceHeight) + " rows to " + std::to_string(row.width));
        LimitStage stage(kind);
        host::Picture* source = stage.Make({1, row.sourceHeight}, 73, hasAlpha);
        for (int mode = 1; mode <= 7; ++mode) {
          const support::AllocationWatch watch;
          const host::CallReport report =
              stage.Library().Call("ScalingZVQ", source, {mode, row.width, 1});
          EXPECT_EQ(watch.Calls(), 0);
          EXPECT_EQ(report.result, host::Value());
          EXPECT_EQ(support::Complaints(report), "");
        }
      }
    }
  }
}

// A console host whose picture has as many rows as it says, all of them in the same place. The
// number of pixels in a block wraps: to 0, which makes every channel 0, and to a negative number.
TEST(WrappingBlocks, AreDividedByTheirWrappedNumber) {
  const struct {
    int side;
    std::uint32_t expected;
  } rows[] = {{65536, 0}, {46341, static_cast<std::uint32_t>(-1) & 0xFF}};
  for (const auto& row : rows) {
    LimitStage stage(host::ApplicationKind::kConsole);
    host::Picture* source = stage.Make({row.side, 1}, 74);
    for (int x = 0; x < row.side; ++x) source->SetWord(x, 0, 0x010101);
    std::vector<unsigned char*> table(static_cast<std::size_t>(row.side), source->Row(0));
    source->distort = [&](host::Picture::LockedView view) {
      view.description.height = row.side;
      view.buffer.rowTable = table.data();
    };
    const host::CallReport report = stage.Library().Call("ScaleZVQ", source, {1, 1});
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Word(0, 0), row.expected * 0x010101u) << row.side;
  }
}

// Tables beyond the size rule, of which the first wraps to 0 in 32 bits and a later one to 1024.
TEST(WrappingBlurs, GiveThePictureAsTheHostMadeIt) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const double radius : {1048575.0, 1048576.0, 2097151.0, 2097152.0, 2097153.0, 4194303.5,
                                1073741823.0, 1073741824.0, 2147483646.0, 2147483647.0}) {
      SCOPED_TRACE(radius);
      LimitStage stage(kind);
      host::Picture* source = stage.Make({32767, 2}, 75);
      Blocks blocks = BlurBlocks(1, 32767, 32767 * 4 + (stage.IsDesktop() ? 12 : 0));
      blocks.most -= blocks.sizes.front();
      blocks.sizes.erase(blocks.sizes.begin());
      const host::CallReport report =
          Measure(stage,
                  {"BlurZVQ",
                   source,
                   {radius},
                   "32767x2, radius " + std::to_string(static_cast<long long>(radius))},
                  blocks);
      const std::uint32_t white = stage.IsDesktop() ? 0xFFFFFFFF : 0x00FFFFFF;
      stage.Expect(report, oracle::NewImage(32767, 2, stage.ResultFormat(), white));
      EXPECT_EQ(Pattern(75).Changed(*source), "");
    }
  }
}

}  // namespace

}  // namespace large
