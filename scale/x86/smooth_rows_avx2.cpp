// One row of the smooth enlarger with AVX2: eight columns at a time, each of the four bytes in a
// plane of floats of its own.
#include "scale/x86/smooth_avx2.h"

namespace {

constexpr std::int32_t kPiece = 512;  // source columns that are blended at a time, but for two
constexpr std::int32_t kGroup = 8;
constexpr int kBytes = 4;  // of a pixel

// Which byte is the same in all pixels of both rows, as alpha mostly is. It has no plane.
enum Constant { kFirstByte = 0, kLastByte = 3, kNoByte = 4 };

// The blend of a piece's source columns, the last one repeated once, and as many floats behind them
// as the last group reads.
struct Blended {
  int constant;  // the value of the constant byte
  alignas(32) float plane[kBytes][kPiece + 3 * kGroup];
};

// Ones where any of `count` pixels of two rows differs from the first.
VARNELL_AVX2 std::uint32_t Differences(const unsigned char* here, const unsigned char* next,
                                       std::int32_t count) {
  const __m256i first = _mm256_broadcastd_epi32(_mm_loadu_si32(here));
  __m256i different = _mm256_setzero_si256();
  for (std::int32_t x = 0; x < count; x += kGroup) {
    const __m256i a = _mm256_xor_si256(LoadPixels(here + x * kBytes, count - x), first);
    const __m256i b = _mm256_xor_si256(LoadPixels(next + x * kBytes, count - x), first);
    __m256i either = _mm256_or_si256(a, b);
    if (count - x < kGroup) either = _mm256_and_si256(either, FirstLanes(count - x));
    different = _mm256_or_si256(different, either);
  }
  __m128i four =
      _mm_or_si128(_mm256_castsi256_si128(different), _mm256_extracti128_si256(different, 1));
  four = _mm_or_si128(four, _mm_unpackhi_epi64(four, four));
  four = _mm_or_si128(four, _mm_srli_epi64(four, 32));
  return static_cast<std::uint32_t>(_mm_cvtsi128_si32(four));
}

// Byte kByte of eight pixels as floats.
template <int kByte>
VARNELL_AVX2 inline __m256 Plane(__m256i pixels) {
  const __m256i moved = _mm256_srli_epi32(pixels, 8 * kByte);
  return _mm256_cvtepi32_ps(kByte == 3 ? moved : _mm256_and_si256(moved, _mm256_set1_epi32(255)));
}

template <int kByte>
VARNELL_AVX2 inline void BlendPlane(__m256i here, __m256i next, __m256 hereWeight,
                                    __m256 nextWeight, std::int32_t x, Blended* blended) {
  const __m256 sum = _mm256_add_ps(_mm256_mul_ps(Plane<kByte>(here), hereWeight),
                                   _mm256_mul_ps(Plane<kByte>(next), nextWeight));
  _mm256_store_ps(&blended->plane[kByte][x], sum);
}

// Blends `count` pixels of two rows.
template <Constant kConstant>
VARNELL_AVX2 void BlendRows(const unsigned char* here, const unsigned char* next,
                            std::int32_t count, const TapWeights& down, Blended* blended) {
  const __m256 hereWeight = _mm256_set1_ps(down.entry[2]);
  const __m256 nextWeight = _mm256_set1_ps(down.entry[1]);
  for (std::int32_t x = 0; x < count; x += kGroup) {
    const __m256i a = LoadPixels(here + x * kBytes, count - x);
    const __m256i b = LoadPixels(next + x * kBytes, count - x);
    if (kConstant != 0) BlendPlane<0>(a, b, hereWeight, nextWeight, x, blended);
    BlendPlane<1>(a, b, hereWeight, nextWeight, x, blended);
    BlendPlane<2>(a, b, hereWeight, nextWeight, x, blended);
    if (kConstant != 3) BlendPlane<3>(a, b, hereWeight, nextWeight, x, blended);
  }
  if (kConstant != kNoByte) blended->constant = here[kConstant];
  for (int byte = 0; byte < kBytes; ++byte) {
    float* plane = blended->plane[byte];
    if (byte != kConstant) plane[count] = plane[count - 1];
  }
}

// Weights of eight columns, and which of the eight blends from the first column's on are theirs.
struct Columns {
  __m256i steps, nextSteps;
  __m256 here, next;
};

// One byte of eight new pixels. With kNear, the pixels after theirs are among the eight, too.
template <bool kNear>
VARNELL_AVX2 inline __m256i Along(const float* plane, const Columns& columns) {
  const __m256 window = _mm256_loadu_ps(plane);
  const __m256 nextWindow = kNear ? window : _mm256_loadu_ps(plane + 1);
  const __m256 here = _mm256_permutevar8x32_ps(window, columns.steps);
  const __m256 next = _mm256_permutevar8x32_ps(nextWindow, columns.nextSteps);
  const __m256 value = _mm256_add_ps(_mm256_set1_ps(0.5F), _mm256_mul_ps(here, columns.here));
  return _mm256_cvttps_epi32(_mm256_add_ps(value, _mm256_mul_ps(next, columns.next)));
}

template <Constant kConstant, bool kNear>
VARNELL_AVX2 inline __m256i EightPixels(const Blended& blended, std::int32_t x,
                                        const Columns& columns) {
  const __m128i order = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const __m256i constant = _mm256_set1_epi32(blended.constant);
  const __m256i b0 = kConstant == 0 ? constant : Along<kNear>(&blended.plane[0][x], columns);
  const __m256i b1 = Along<kNear>(&blended.plane[1][x], columns);
  const __m256i low = _mm256_packs_epi32(b0, b1);
  const __m256i b2 = Along<kNear>(&blended.plane[2][x], columns);
  const __m256i b3 = kConstant == 3 ? constant : Along<kNear>(&blended.plane[3][x], columns);
  const __m256i high = _mm256_packs_epi32(b2, b3);
  return _mm256_shuffle_epi8(_mm256_packus_epi16(low, high), _mm256_broadcastsi128_si256(order));
}

// `blended` begins with the blend of source column left[0].
template <Constant kConstant, bool kNear>
VARNELL_AVX2 void BlendColumns(const Blended& blended, const std::int32_t* left, const float* next,
                               unsigned char* result, std::int32_t count) {
  const __m256i step = _mm256_set1_epi32(kNear ? 1 : 0);
  const __m256 one = _mm256_set1_ps(1.0F);
  Columns columns;
  std::int32_t i = 0;
  for (; i + kGroup <= count; i += kGroup) {
    const __m256i first = _mm256_broadcastd_epi32(_mm_loadu_si32(left + i));
    columns.steps =
        _mm256_sub_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(left + i)), first);
    columns.nextSteps = _mm256_add_epi32(columns.steps, step);
    columns.next = _mm256_loadu_ps(next + i);
    columns.here = _mm256_sub_ps(one, columns.next);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(result + i * kBytes),
                        EightPixels<kConstant, kNear>(blended, left[i] - left[0], columns));
  }
  if (i == count) return;
  const __m256i lanes = FirstLanes(count - i);
  columns.steps =
      _mm256_sub_epi32(_mm256_maskload_epi32(left + i, lanes), _mm256_set1_epi32(left[i]));
  columns.nextSteps = _mm256_add_epi32(columns.steps, step);
  columns.next = _mm256_maskload_ps(next + i, lanes);
  columns.here = _mm256_sub_ps(one, columns.next);
  StorePixels(result + i * kBytes,
              EightPixels<kConstant, kNear>(blended, left[i] - left[0], columns), count - i);
}

template <Constant kConstant>
VARNELL_AVX2 void EnlargePieces(const SmoothSourceRows& source, const TapWeights& down,
                                const SmoothTables& tables, unsigned char* result,
                                std::int32_t width) {
  // Whether seven columns further is at most six source columns further.
  const bool near = std::int64_t{7} * source.width <= std::int64_t{6} * width;
  const auto blendColumns = near ? BlendColumns<kConstant, true> : BlendColumns<kConstant, false>;
  // Whole groups of which the last source column is less than kPiece after the first.
  const std::int64_t piece = std::int64_t{kPiece - 1} * width / source.width / kGroup * kGroup;
  Blended blended;
  std::int32_t count = 0;
  for (std::int32_t first = 0; first < width; first += count) {
    count = width - first < piece ? width - first : static_cast<std::int32_t>(piece);
    const std::int32_t* left = tables.Columns() + first;
    const std::int32_t after = left[count - 1] + 2;
    const std::int32_t columns = (after < source.width ? after : source.width) - left[0];
    const auto offset = static_cast<std::size_t>(left[0]) * kBytes;
    BlendRows<kConstant>(source.taps[1] + offset, source.taps[2] + offset, columns, down, &blended);
    blendColumns(blended, left, tables.NextWeights() + first,
                 result + static_cast<std::size_t>(first) * kBytes, count);
  }
}

VARNELL_AVX2 void EnlargeRow(const SmoothSourceRows& source, const TapWeights& down,
                             const SmoothTables& tables, unsigned char* result,
                             std::int32_t width) {
  if (EnlargeSmoothRowExactly(source, down, tables, result, width)) return;
  const std::uint32_t different = Differences(source.taps[1], source.taps[2], source.width);
  const bool lastIsConstant = different >> 24 == 0;
  const bool firstIsConstant = (different & 0xFF) == 0;
  (lastIsConstant    ? EnlargePieces<kLastByte>
   : firstIsConstant ? EnlargePieces<kFirstByte>
                     : EnlargePieces<kNoByte>)(source, down, tables, result, width);
}

}  // namespace

const SmoothRows kSmoothRowsAvx2 = {true, EnlargeRow};
