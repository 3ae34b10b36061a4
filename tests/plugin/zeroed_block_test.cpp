// The plug-in's memory: filled with zeros, and refused for sizes outside 1 to 2^31 - 1.
#include "plugin/zeroed_block.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/allocation_faults.h"

namespace {

using support::AllocationWatch;
using Sizes = std::vector<std::size_t>;

TEST(AllocateZeroed, RefusesSizesOutsideTheRuleWithoutAskingForThem) {
  const std::uint64_t sizes[] = {0,           0x80000000,  0x80000001,       0xFFFFFFFF,
                                 0x100000000, 0x100000001, 0x10000000000000, ~0ull};
  for (const std::uint64_t size : sizes) {
    const AllocationWatch watch;
    EXPECT_EQ(AllocateZeroed(size), nullptr) << size;
    EXPECT_EQ(watch.Calls(), 0) << size;
  }
}

TEST(AllocateZeroed, AsksForTheLargestSizeOfTheRule) {
  const AllocationWatch watch(1);
  EXPECT_EQ(AllocateZeroed(0x7FFFFFFF), nullptr);
  EXPECT_EQ(watch.Sizes(), Sizes{0x7FFFFFFF});
}

TEST(AllocateZeroed, AnswersNullWhenThereIsNoMemory) {
  const AllocationWatch watch(1);
  EXPECT_EQ(AllocateZeroed(16), nullptr);
  EXPECT_EQ(watch.Sizes(), Sizes{16});
}

TEST(AllocateZeroed, FillsWithZerosWhatWasUsedBefore) {
  for (int round = 0; round < 8; ++round) {
    const AllocationWatch watch;
    auto* bytes = static_cast<unsigned char*>(AllocateZeroed(517));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(watch.Sizes(), Sizes{517});
    for (int i = 0; i < 517; ++i) ASSERT_EQ(bytes[i], 0) << i;
    std::memset(bytes, 0xEE, 517);
    std::free(bytes);
  }
}

TEST(CopyText, CopiesUpToTheTerminatingZero) {
  const char original[] = "Picture\0hidden";
  const AllocationWatch watch;
  char* copy = CopyText(original);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, original);
  EXPECT_STREQ(copy, "Picture");
  EXPECT_EQ(watch.Sizes(), Sizes{8});
  std::free(copy);
}

TEST(CopyText, CopiesTheEmptyText) {
  char* copy = CopyText("");
  ASSERT_NE(copy, nullptr);
  EXPECT_STREQ(copy, "");
  std::free(copy);
}

TEST(CopyText, AnswersNullWhenThereIsNoMemory) {
  const AllocationWatch watch(1);
  EXPECT_EQ(CopyText("Picture"), nullptr);
}

TEST(ZeroedBlock, IsFalseWithoutMemoryAndTrueWithIt) {
  EXPECT_FALSE(ZeroedBlock<int>());
  EXPECT_FALSE(ZeroedBlock<int>(0));
  EXPECT_FALSE(ZeroedBlock<int>(0x80000000));
  EXPECT_TRUE(ZeroedBlock<int>(4));
}

TEST(ZeroedBlock, IndexesItsElements) {
  const ZeroedBlock<std::uint32_t> block(3 * 4);
  ASSERT_TRUE(block);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(block[i], 0u);
  block[std::size_t{1}] = 7;
  block[2] = 9;
  EXPECT_EQ(block.Data()[1], 7u);
  EXPECT_EQ(block.Data()[2], 9u);
}

TEST(ZeroedBlock, HandsItsMemoryOverWhenItIsMoved) {
  ZeroedBlock<int> first(8);
  int* data = first.Data();
  ZeroedBlock<int> second(std::move(first));
  EXPECT_EQ(second.Data(), data);
  EXPECT_FALSE(first);  // NOLINT: moved from on purpose
  ZeroedBlock<int> third;
  third = std::move(second);
  EXPECT_EQ(third.Data(), data);
  EXPECT_FALSE(second);  // NOLINT
}

}  // namespace
