#include "scale/smooth_rows.h"

#include "plugin/arithmetic.h"

namespace {

constexpr int kTaps = 4;
constexpr int kBytes = 4;  // of a pixel

std::int32_t Clamp(std::int32_t index, std::int32_t size) {
  if (index < 0) return 0;
  return index < size ? index : size - 1;
}

// Blends the four source rows into one value per source column, for one byte of the pixel.
void BlendRows(const SmoothSourceRows& source, int byte, const TapWeights& weights, float* row) {
  for (std::int32_t x = 0; x < source.width; ++x) {
    const std::size_t offset = static_cast<std::size_t>(x) * kBytes + static_cast<unsigned>(byte);
    float sum = 0.0F;
    for (int k = 0; k < kTaps; ++k) {
      sum += static_cast<float>(source.taps[k][offset]) * weights.entry[kTaps - 1 - k];
    }
    row[x] = sum;
  }
}

// Blends four neighbours of the blended row into each new pixel. The half, added with the first,
// rounds to nearest.
void BlendColumns(const float* row, std::int32_t sourceWidth, const SmoothTables& tables,
                  unsigned char* result, std::int32_t width) {
  for (std::int32_t i = 0; i < width; ++i) {
    const std::int32_t left = tables.Column(i);
    const TapWeights& weights = tables.ColumnWeights(i);
    float value = row[Clamp(left - 1, sourceWidth)] * weights.entry[3] + 0.5F;
    value += row[Clamp(left, sourceWidth)] * weights.entry[2];
    value += row[Clamp(left + 1, sourceWidth)] * weights.entry[1];
    value += row[Clamp(left + 2, sourceWidth)] * weights.entry[0];
    result[static_cast<std::size_t>(i) * kBytes] = TruncateToByte(value);
  }
}

void EnlargeRow(const SmoothSourceRows& source, const TapWeights& down, const SmoothTables& tables,
                unsigned char* result, std::int32_t width) {
  for (int byte = 0; byte < kBytes; ++byte) {
    BlendRows(source, byte, down, tables.RowBuffer());
    BlendColumns(tables.RowBuffer(), source.width, tables, result + byte, width);
  }
}

}  // namespace

const SmoothRows kSmoothRowsScalar = {false, EnlargeRow};

const SmoothRows& SmoothRowsFor(VectorLevel level, std::int32_t sourceWidth, std::int32_t width) {
#if defined(__i386__) || defined(__x86_64__)
  if (sourceWidth > width) return kSmoothRowsScalar;
  if (level >= VectorLevel::kAvx2) return kSmoothRowsAvx2;
  if (level >= VectorLevel::kSse2) return kSmoothRowsSse2;
#else
  static_cast<void>(level);
  static_cast<void>(sourceWidth);
  static_cast<void>(width);
#endif
  return kSmoothRowsScalar;
}
