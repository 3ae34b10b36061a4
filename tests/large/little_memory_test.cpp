// A process whose addresses are used up: each method gives its failure result and leaves nothing.
#include <sys/resource.h>

#include <fstream>

#include "tests/large/limit_stage.h"
#include "tests/support/allocation_faults.h"

namespace large {

namespace {

using host::ApplicationKind;

constexpr std::size_t kMegabyte = 1000000;

std::size_t AddressBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t pages = 0;
  file >> pages;
  return pages * 4096;
}

// While it lives, the process gets at most so many more bytes of addresses.
class AddressLimit {
 public:
  explicit AddressLimit(std::size_t moreBytes) {
    EXPECT_EQ(getrlimit(RLIMIT_AS, &before_), 0);
    rlimit limited = before_;
    limited.rlim_cur = AddressBytes() + moreBytes;
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
  }
  ~AddressLimit() { setrlimit(RLIMIT_AS, &before_); }
  AddressLimit(const AddressLimit&) = delete;
  AddressLimit& operator=(const AddressLimit&) = delete;

 private:
  rlimit before_ = {};
};

struct Outcome {
  host::CallReport report;
  std::vector<std::size_t> sizes;
};

Outcome CallWith(std::size_t moreBytes, Stage& stage, const char* method, host::Picture* receiver,
                 const std::vector<host::Value>& values) {
  Outcome outcome;
  int left = 0;
  {
    const AddressLimit limit(moreBytes);
    const support::AllocationWatch watch;
    outcome.report = stage.Library().Call(method, receiver, values);
    outcome.sizes = watch.Sizes();
    left = watch.LiveBlocks();
  }
  EXPECT_EQ(left, 0) << method;
  EXPECT_EQ(support::Complaints(outcome.report), "") << method;
  EXPECT_TRUE(stage.Host().Raised().empty()) << method;
  return outcome;
}

constexpr int kSide = 3000;  // of pictures of 36 MB

class LittleMemory : public testing::TestWithParam<ApplicationKind> {
 protected:
  LittleMemory() : stage(GetParam()) { source = stage.NewPicture(kSide, kSide, pattern); }
  ~LittleMemory() override { EXPECT_EQ(pattern.Changed(*source), ""); }

  const Pattern pattern{81};
  Stage stage;
  host::Picture* source;
};
INSTANTIATE_TEST_SUITE_P(On, LittleMemory,
                         testing::Values(ApplicationKind::kDesktop, ApplicationKind::kConsole));

TEST_P(LittleMemory, ForTheResultGivesNil) {
  const std::size_t little = 20 * kMegabyte;
  const int side = kSide + 1;
  EXPECT_EQ(CallWith(little, stage, "ScaleZVQ", source, {side, side}).report.result, host::Value());
  EXPECT_EQ(CallWith(little, stage, "ScaleZVQ", source, {side, side, true}).report.result,
            host::Value());
  EXPECT_EQ(CallWith(little, stage, "ScaleImageAndMaskZVQ", source, {side, side}).report.result,
            host::Value());
  const Outcome blur = CallWith(little, stage, "BlurZVQ", source, {3.0});
  EXPECT_EQ(blur.report.result, host::Value());
  EXPECT_TRUE(blur.sizes.empty());
}

// The intermediate image takes 36 MB.
TEST_P(LittleMemory, ForTheIntermediateImageGivesNil) {
  const Outcome outcome = CallWith(20 * kMegabyte, stage, "ScalingZVQ", source, {1, kSide, kSide});
  EXPECT_EQ(outcome.report.result, host::Value());
  EXPECT_EQ(outcome.sizes, std::vector<std::size_t>{std::size_t{kSide} * kSide * 4});
}

TEST_P(LittleMemory, ForTheResultAfterTheFirstPassGivesNil) {
  Outcome outcome = CallWith(50 * kMegabyte, stage, "ScalingZVQ", source, {1, kSide, kSide});
  EXPECT_EQ(outcome.report.result, host::Value());
  const Blocks blocks = ScalingBlocks(1, kSide, kSide, kSide, kSide);
  TakeFurther(blocks, outcome.sizes);
  EXPECT_EQ(outcome.sizes, blocks.sizes);
}

// The table takes 41 MB.
TEST_P(LittleMemory, ForTheTableGivesTheUnblurredPicture) {
  const Outcome outcome = CallWith(60 * kMegabyte, stage, "BlurZVQ", source, {20000.0});
  const host::Picture* result = outcome.report.ResultPicture();
  ASSERT_NE(result, nullptr);
  const int rowBytes = kSide * 4 + (stage.IsDesktop() ? 12 : 0);
  EXPECT_EQ(outcome.sizes, BlurBlocks(20000, kSide, rowBytes).sizes);
  const std::uint32_t white = stage.IsDesktop() ? 0xFFFFFFFF : 0x00FFFFFF;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) ASSERT_EQ(result->Word(x, y), white) << x << ", " << y;
  }
}

TEST_P(LittleMemory, ForTheScaledMaskGivesThePictureWithoutOne) {
  const int side = kSide + 1;
  stage.Host().SetMask(source, stage.NewPicture(kSide, kSide, Pattern(82)));
  const Outcome outcome =
      CallWith(60 * kMegabyte, stage, "ScaleImageAndMaskZVQ", source, {side, side});
  const host::Picture* result = outcome.report.ResultPicture();
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->Mask(), nullptr);
  // Enlarged by one pixel, the last pixel is the source's last.
  const std::uint32_t word = source->Word(kSide - 1, kSide - 1);
  const int format = source->PixelFormat();
  EXPECT_EQ(result->Word(side - 1, side - 1),
            oracle::PackOpaque(stage.ResultFormat(), oracle::Red(word, format),
                               oracle::Green(word, format), oracle::Blue(word, format)));
}

TEST_P(LittleMemory, IsEnoughForDrawing) {
  host::Picture* receiver = stage.NewPicture(kSide, kSide, Pattern(83));
  const Outcome outcome =
      CallWith(kMegabyte, stage, "DrawPictureFZVQ", receiver, {source, 0, 0, 1.0});
  EXPECT_EQ(outcome.report.result, host::Value(true));
  EXPECT_TRUE(outcome.sizes.empty());
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      ASSERT_EQ(receiver->Get(x, y), source->Get(x, y)) << x << ", " << y;
    }
  }
}

}  // namespace

}  // namespace large
