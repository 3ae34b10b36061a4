#include "tool/picture_difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace tool {
namespace {

using Samples = std::array<int, 4>;

// The absolute differences of red, green, blue and alpha.
Samples Differences(const host::Rgba& a, const host::Rgba& b) {
  return {std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b), std::abs(a.a - b.a)};
}

struct Sums {
  std::int64_t absolutes = 0;
  std::int64_t squares = 0;
};

// Takes one sample into account; pixels are counted elsewhere.
void Take(int difference, int x, int y, int channel, SampleDifference& found, Sums& sums) {
  sums.absolutes += difference;
  sums.squares += std::int64_t{difference} * difference;
  if (difference <= found.largest) return;
  found.largest = difference;
  found.x = x;
  found.y = y;
  found.channel = channel;
}

void Finish(const Sums& sums, double count, SampleDifference& found) {
  found.mean = double(sums.absolutes) / count;
  found.rms = std::sqrt(double(sums.squares) / count);
}

}  // namespace

double SampleDifference::Psnr() const { return 20 * std::log10(255 / rms); }

PictureDifference Difference(const Bitmap& a, const Bitmap& b) {
  const int channels = a.hasAlpha || b.hasAlpha ? 4 : 3;
  PictureDifference found;
  found.channels.resize(std::size_t(channels));
  std::array<Sums, 4> sums;
  Sums allSums;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      const Samples differences = Differences(a.At(x, y), b.At(x, y));
      bool differs = false;
      for (int i = 0; i < channels; ++i) {
        const auto channel = std::size_t(i);
        const int difference = differences[channel];
        found.channels[channel].channel = i;
        Take(difference, x, y, i, found.channels[channel], sums[channel]);
        Take(difference, x, y, i, found.all, allSums);
        found.channels[channel].pixels += difference != 0 ? 1 : 0;
        differs = differs || difference != 0;
      }
      found.all.pixels += differs ? 1 : 0;
    }
  }
  const double pixels = double(a.width) * a.height;
  for (std::size_t i = 0; i < found.channels.size(); ++i) {
    Finish(sums[i], pixels, found.channels[i]);
  }
  Finish(allSums, pixels * channels, found.all);
  return found;
}

Bitmap DifferencePicture(const Bitmap& a, const Bitmap& b, int gain) {
  Bitmap picture(a.width, a.height, false);
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    const Samples differences = Differences(a.pixels[i], b.pixels[i]);
    const auto shown = [&](int difference) {
      return std::uint8_t(std::min(255, gain * std::max(difference, differences[3])));
    };
    picture.pixels[i] = {shown(differences[0]), shown(differences[1]), shown(differences[2]), 255};
  }
  return picture;
}

}  // namespace tool
