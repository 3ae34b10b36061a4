#include "host/pixel_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "tests/host/faults.h"

namespace host {
namespace {

constexpr Guard kGuards[] = {Guard::kNone, Guard::kAfter, Guard::kBefore};

TEST(PixelMemory, IsZeroAndWritableThroughout) {
  for (const Guard guard : kGuards) {
    for (const std::size_t size : {1u, 4u, 100u, 4096u, 4100u, 20000u}) {
      PixelMemory memory(size, guard);
      ASSERT_EQ(memory.Size(), size);
      EXPECT_TRUE(std::all_of(memory.Data(), memory.Data() + size,
                              [](unsigned char byte) { return byte == 0; }));
      std::memset(memory.Data(), 0xFF, size);
      EXPECT_EQ(memory.Data()[size - 1], 0xFF);
    }
  }
}

TEST(PixelMemory, IsAlignedForWordsWhenItsSizeIsWhole) {
  for (const Guard guard : kGuards) {
    for (const std::size_t size : {4u, 12u, 4096u, 4100u}) {
      const PixelMemory memory(size, guard);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.Data()) % 4, 0u);
    }
  }
}

TEST(PixelMemoryDeath, GuardAfterFaultsOneByteBehindTheEnd) {
  for (const std::size_t size : {4u, 4096u, 4100u}) {
    PixelMemory memory(size, Guard::kAfter);
    Touch(memory.Data() + size - 1);
    EXPECT_FAULT(Touch(memory.Data() + size));
  }
}

TEST(PixelMemoryDeath, GuardBeforeFaultsOneByteBeforeTheStart) {
  for (const std::size_t size : {4u, 4096u, 4100u}) {
    PixelMemory memory(size, Guard::kBefore);
    Touch(memory.Data());
    EXPECT_FAULT(Touch(memory.Data() - 1));
  }
}

TEST(PixelMemoryDeath, InaccessibleMemoryFaultsAndItsAddressesStayTaken) {
  PixelMemory memory(8192, Guard::kNone);
  unsigned char* const first = memory.Data();
  Touch(first);
  memory.MakeInaccessible();
  memory.MakeInaccessible();
  EXPECT_FAULT(Touch(first));
  EXPECT_FAULT(Touch(first + 8191));
  for (int i = 0; i < 50; ++i) {
    const PixelMemory other(8192, Guard::kNone);
    EXPECT_NE(other.Data(), first);
  }
}

TEST(PixelMemory, MovesWithItsContents) {
  PixelMemory first(16, Guard::kAfter);
  first.Data()[3] = 9;
  unsigned char* const at = first.Data();
  PixelMemory second(std::move(first));
  EXPECT_EQ(second.Data(), at);
  EXPECT_EQ(first.Data(), nullptr);  // NOLINT(bugprone-use-after-move): what a move leaves behind.
  PixelMemory third(32, Guard::kNone);
  third = std::move(second);
  EXPECT_EQ(third.Data()[3], 9);
  EXPECT_EQ(third.Size(), 16u);
  PixelMemory none;
  EXPECT_EQ(none.Data(), nullptr);
  none.MakeInaccessible();
}

TEST(PixelMemory, ThrowsWhenThereIsNone) {
  EXPECT_THROW(PixelMemory(static_cast<std::size_t>(-1), Guard::kNone), std::bad_alloc);
  EXPECT_THROW(PixelMemory(static_cast<std::size_t>(-1) / 2 + 1, Guard::kNone), std::bad_alloc);
}

TEST(PixelMemory, InaccessibleMemoryNeverUsesUpTheAddressSpace) {
  // 6 GB in all, more than 32 bits can address.
  std::vector<PixelMemory> dead;
  for (int i = 0; i < 96; ++i) {
    dead.emplace_back(std::size_t{64} << 20, Guard::kNone);
    dead.back().MakeInaccessible();
  }
  EXPECT_EQ(dead.size(), 96u);
}

}  // namespace
}  // namespace host
