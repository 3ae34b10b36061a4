// No damage to a macOS library does more than make it refused. Nothing of it is run.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "host/macho_image.h"
#include "tests/host/macho_trial.h"

namespace host {
namespace {

using macho_test::Bytes;
using macho_test::kData;
using macho_test::kFrames;
using macho_test::kLinked;
using macho_test::kTables;
using macho_test::TrialLibrary;

constexpr char kWordSize[] = "a 32-bit Intel macOS library, but this program is 64-bit";

// Loads the bytes and looks for an export; has an exception search all registered tables.
std::string FaultOf(std::vector<std::uint8_t> bytes) {
  // Exactly as large as the file, so that a sanitizer sees reads beyond it.
  bytes.shrink_to_fit();
  try {
    const MachoImage image(std::move(bytes));
    image.Find("answer");
    try {
      throw 1;
    } catch (int) {
    }
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "";
}

bool IsOneLine(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c != '\n'; });
}

const char* Undamaged() { return sizeof(void*) == 4 ? "" : kWordSize; }

TEST(MachoDamage, EveryTruncationIsRefused) {
  const Bytes whole = TrialLibrary().Build();
  EXPECT_EQ(FaultOf(whole), Undamaged());
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::string fault = FaultOf({whole.begin(), whole.begin() + static_cast<long>(size)});
    ASSERT_NE(fault, "") << size;
    ASSERT_NE(fault, kWordSize) << size;
  }
}

// Changes a few bytes in one of the ranges that are more than numbers to the loader.
Bytes Damaged(const Bytes& whole, std::size_t headerSize, std::uint64_t& state) {
  const auto random = [&](std::size_t below) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::size_t>(state >> 33) % below;
  };
  struct Range {
    std::size_t first, last;
  };
  const Range ranges[] = {{0, headerSize},
                          {kFrames - kLinked, kFrames - kLinked + 200},
                          {kData - kLinked, kData - kLinked + 64},
                          {kTables - kLinked, whole.size()}};
  Bytes damaged = whole;
  for (std::size_t left = 1 + random(3); left > 0; --left) {
    const Range& range = ranges[random(4)];
    std::uint8_t& byte = damaged[range.first + random(range.last - range.first)];
    constexpr std::uint8_t kExtremes[] = {0, 1, 0x7F, 0x80, 0xFF};
    switch (random(3)) {
      case 0:
        byte = static_cast<std::uint8_t>(byte ^ 1u << random(8));
        break;
      case 1:
        byte = kExtremes[random(5)];
        break;
      default:
        byte = static_cast<std::uint8_t>(random(256));
    }
  }
  return damaged;
}

TEST(MachoDamage, AnyChangeIsHarmlessOrRefused) {
  const Bytes whole = TrialLibrary().Build();
  const std::size_t headerSize = 28 + whole.WordAt(20);
  std::uint64_t state = 20100;
  int harmless = 0, refused = 0;
  std::set<std::string> faults;
  for (int i = 0; i < 20000; ++i) {
    const std::string fault = FaultOf(Damaged(whole, headerSize, state));
    ASSERT_TRUE(IsOneLine(fault)) << i;
    ++(fault == Undamaged() ? harmless : refused);
    faults.insert(fault);
  }
  EXPECT_GT(harmless, 1000);
  EXPECT_GT(refused, 2000);
  EXPECT_GT(faults.size(), 40u) << "many different things are noticed";
}

}  // namespace
}  // namespace host
