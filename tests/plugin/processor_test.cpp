// What is said of the processor, against what the compiler's own library and the system say.
#include "plugin/processor.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

#if defined(__i386__) || defined(__x86_64__)

// The words of the first "flags" line of the system's list.
bool SystemSays(const std::string& flag) {
  std::ifstream list("/proc/cpuinfo");
  for (std::string line; std::getline(list, line);) {
    if (!line.starts_with("flags")) continue;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
      if (word == flag) return true;
    }
    return false;
  }
  return false;
}

TEST(Processor, HasTheLevelThatTheSystemSays) {
  VectorLevel expected = VectorLevel::kScalar;
  if (SystemSays("sse2")) expected = VectorLevel::kSse2;
  if (SystemSays("ssse3") && SystemSays("sse4_1")) expected = VectorLevel::kSse41;
  if (expected == VectorLevel::kSse41 && SystemSays("avx2") && SystemSays("fma") &&
      SystemSays("f16c")) {
    expected = VectorLevel::kAvx2;
  }
  EXPECT_EQ(BestVectorLevel(), expected);
}

TEST(Processor, HasWhatTheCompilersLibrarySays) {
  __builtin_cpu_init();
  EXPECT_EQ(BestVectorLevel() >= VectorLevel::kSse2, __builtin_cpu_supports("sse2") != 0);
  const bool supported = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  EXPECT_EQ(BestVectorLevel() >= VectorLevel::kAvx2, supported);
}

#else

TEST(Processor, OfAnotherKindIsScalar) { EXPECT_EQ(BestVectorLevel(), VectorLevel::kScalar); }

#endif

TEST(Processor, TheProductRunsAtItsBest) { EXPECT_EQ(ChosenVectorLevel(), BestVectorLevel()); }

}  // namespace
