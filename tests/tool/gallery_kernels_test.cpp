// Weights read back from the pixels of an enlarged row.
#include "tool/gallery_kernels.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tool {
namespace {

// What a plug-in makes of the row that does what the formula says.
Bitmap Enlarged(const Kernel& kernel, const Bitmap& row, int width) {
  Bitmap result(width, 1, false);
  for (int i = 0; i < width; ++i) {
    const double place = (i + 0.5) * row.width / width - 0.5;
    double level = 0;
    for (int j = 0; j < row.width; ++j) {
      level += row.At(j, 0).g * Share(kernel, place - j, j, row.width);
    }
    const auto byte = std::uint8_t(std::lround(level));
    result.At(i, 0) = {byte, byte, byte, 255};
  }
  return result;
}

TEST(KernelMeasurement, FindsTheWeightsOfEachKernel) {
  for (const Kernel& kernel : kKernels) {
    const KernelMeasurement measurement(kernel);
    const std::vector<std::string> words = measurement.Words();
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[0], std::to_string(kernel.mode));
    EXPECT_EQ(words[2], "1");
    const Bitmap row = *measurement.Impulse().picture;
    const auto points = measurement.Measured(Enlarged(kernel, row, std::stoi(words[1])));
    ASSERT_GT(points.size(), 2 * kernel.radius * 5) << kernel.name;
    EXPECT_LT(points.front().x, -kernel.radius - 0.5);
    EXPECT_GT(points.back().x, kernel.radius + 0.5);
    EXPECT_EQ(points[points.size() / 2].x, 0);
    EXPECT_LE(measurement.LargestError(points), KernelMeasurement::kStep / 2 + 1e-9);
    EXPECT_GT(measurement.LargestError(points) + (kernel.mode == 2 ? 1 : 0), 1e-4) << kernel.name;
  }
}

TEST(KernelMeasurement, TellsEachKernelFromTheOthers) {
  for (const Kernel& kernel : kKernels) {
    const KernelMeasurement measurement(kernel);
    const Bitmap row = *measurement.Impulse().picture;
    for (const Kernel& other : kKernels) {
      if (other.mode == kernel.mode) continue;
      const Bitmap wrong = Enlarged(other, row, std::stoi(measurement.Words()[1]));
      EXPECT_GT(measurement.LargestError(measurement.Measured(wrong)), 2 * KernelMeasurement::kStep)
          << other.name << " for " << kernel.name;
    }
  }
}

TEST(KernelMeasurement, MeasuresNothingInAResultOfAnotherSize) {
  const KernelMeasurement measurement(kKernels[0]);
  const int width = std::stoi(measurement.Words()[1]);
  EXPECT_FALSE(measurement.Measured(Bitmap(width, 1, false)).empty());
  EXPECT_TRUE(measurement.Measured(Bitmap(width + 1, 1, false)).empty());
  EXPECT_TRUE(measurement.Measured(Bitmap(width, 2, false)).empty());
}

}  // namespace
}  // namespace tool
