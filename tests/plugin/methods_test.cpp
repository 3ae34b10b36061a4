// How a Boolean argument is read from its slot.
#include "plugin/methods.h"

#include <gtest/gtest.h>

namespace {

struct SlotCase {
  std::uint32_t slot;
  bool expected;
};

TEST(BooleanSlot, OnlyItsLowByteCountsAndAnyNonZeroByteIsTrue) {
  const SlotCase cases[] = {
      {0, false},          {1, true},          {2, true},          {0x40, true},
      {0x80, true},        {0xFF, true},       {0x100, false},     {0xFFFFFF00, false},
      {0x80000000, false}, {0x80000001, true}, {0xA5A5A501, true}, {0xA5A5A500, false},
  };
  for (const SlotCase& row : cases) {
    EXPECT_EQ(IsTrue(static_cast<REALbooleanSlot>(row.slot)), row.expected) << row.slot;
  }
}

}  // namespace
