// Two and four times as many columns: there every weight is a whole number of 32nds, if the row's
// weights are, too. A blend of rows is then a multiple of 2^-5 below 2^8, the rest is a multiple of
// 2^-10 below 2^9: the floats are exact, and integers give the same bits.
#include "scale/x86/smooth_avx2.h"

namespace {

constexpr std::int32_t kPiece = 256;  // source columns that are blended at a time
constexpr std::int32_t kGroup = 8;
constexpr std::int32_t kBytes = 4;  // of a pixel
constexpr int kOne = 32;            // the weight 1

// A group more than needed for the column after the last, and for what the last group reads.
struct Blended {
  alignas(32) std::int16_t bytes[(kPiece + kGroup) * kBytes];
};

// 32 times the weights of a pixel and the next; 0 and 0 unless these are whole and the sum is one.
struct WholeWeights {
  int here, next;
};

WholeWeights Whole(float here, float next) {
  const WholeWeights whole = {static_cast<int>(here * kOne), static_cast<int>(next * kOne)};
  const bool exact = static_cast<float>(whole.here) == here * kOne &&
                     static_cast<float>(whole.next) == next * kOne;
  return exact && whole.here >= 0 && whole.next >= 0 && whole.here + whole.next == kOne
             ? whole
             : WholeWeights{0, 0};
}

// Blends `count` pixels of two rows, in 32nds, and adds half a unit of the result to each: the
// weights along sum up to one.
VARNELL_AVX2 void BlendRows(const unsigned char* here, const unsigned char* next,
                            std::int32_t count, WholeWeights down, Blended* blended) {
  const __m256i weights = _mm256_set1_epi16(static_cast<short>(down.here | down.next << 8));
  const __m256i half = _mm256_set1_epi16(kOne / 2);
  for (std::int32_t x = 0; x < count; x += kGroup) {
    const __m256i a = LoadPixels(here + x * kBytes, count - x);
    const __m256i b = LoadPixels(next + x * kBytes, count - x);
    const __m256i low = _mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), weights);
    const __m256i high = _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), weights);
    const __m256i first = _mm256_permute2x128_si256(low, high, 0x20);
    const __m256i last = _mm256_permute2x128_si256(low, high, 0x31);
    auto* to = reinterpret_cast<__m256i*>(blended->bytes + x * kBytes);
    _mm256_store_si256(to, _mm256_add_epi16(first, half));
    _mm256_store_si256(to + 1, _mm256_add_epi16(last, half));
  }
}

// Two pixels in each half of the register become pairs of bytes of the one and the other.
VARNELL_AVX2 inline __m256i Pairs(__m256i pixels) {
  const __m128i order = _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
  return _mm256_shuffle_epi8(pixels, _mm256_broadcastsi128_si256(order));
}

VARNELL_AVX2 inline __m256i Along(__m256i pairs, __m256i weights) {
  return _mm256_srli_epi32(_mm256_madd_epi16(pairs, weights), 10);
}

// Four new pixels in each half: two from the first pairs, two from the second.
VARNELL_AVX2 inline __m256i EightPixels(__m256i first, __m256i second, const __m256i* weights) {
  const __m256i low = _mm256_packs_epi32(Along(first, weights[0]), Along(first, weights[1]));
  const __m256i high = _mm256_packs_epi32(Along(second, weights[2]), Along(second, weights[3]));
  return _mm256_packus_epi16(low, high);
}

VARNELL_AVX2 inline __m256i LoadBlended(const Blended& blended, std::int32_t x) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(blended.bytes + x * kBytes));
}

// `count` new pixels, four from each column.
VARNELL_AVX2 void FourEach(const Blended& blended, const __m256i* weights, unsigned char* result,
                           std::int32_t count) {
  for (std::int32_t i = 0; i < count; i += kGroup) {
    // A column and the next, and that one and its next.
    const __m256i two = _mm256_permute4x64_epi64(LoadBlended(blended, i / 4), 0x94);
    const __m256i pairs = Pairs(two);
    StorePixels(result + i * kBytes, EightPixels(pairs, pairs, weights), count - i);
  }
}

// `count` new pixels, two from each column.
VARNELL_AVX2 void TwoEach(const Blended& blended, const __m256i* weights, unsigned char* result,
                          std::int32_t count) {
  for (std::int32_t i = 0; i < count; i += kGroup) {
    const __m256i even = Pairs(LoadBlended(blended, i / 2));
    const __m256i odd = Pairs(LoadBlended(blended, i / 2 + 1));
    StorePixels(result + i * kBytes, EightPixels(even, odd, weights), count - i);
  }
}

VARNELL_AVX2 void EnlargeBy(std::int32_t factor, const SmoothSourceRows& source, WholeWeights down,
                            const WholeWeights* along, unsigned char* result) {
  __m256i weights[4];
  for (int k = 0; k < 4; ++k) {
    const WholeWeights& w = along[k % factor];
    weights[k] = _mm256_set1_epi32(w.here | w.next << 16);
  }
  Blended blended;
  for (std::int32_t first = 0; first < source.width; first += kPiece) {
    const std::int32_t left = source.width - first;
    const std::int32_t columns = left < kPiece ? left : kPiece;
    const auto offset = static_cast<std::size_t>(first) * kBytes;
    const std::int32_t withNext = left > kPiece ? columns + 1 : columns;
    BlendRows(source.taps[1] + offset, source.taps[2] + offset, withNext, down, &blended);
    if (withNext == columns) {  // the border's pixel is its own neighbour
      std::int16_t* next = blended.bytes + columns * kBytes;
      for (int byte = 0; byte < kBytes; ++byte) next[byte] = next[byte - kBytes];
    }
    unsigned char* to = result + offset * static_cast<std::size_t>(factor);
    (factor == 4 ? FourEach : TwoEach)(blended, weights, to, columns * factor);
  }
}

}  // namespace

bool EnlargeSmoothRowExactly(const SmoothSourceRows& source, const TapWeights& down,
                             const SmoothTables& tables, unsigned char* result,
                             std::int32_t width) {
  const std::int32_t factor = width / source.width;
  if ((factor != 2 && factor != 4) || width % source.width != 0) return false;
  const WholeWeights wholeDown = Whole(down.entry[2], down.entry[1]);
  if (wholeDown.here + wholeDown.next != kOne) return false;
  WholeWeights along[4] = {};
  for (int k = 0; k < factor; ++k) {  // they repeat with each source column
    along[k] = Whole(tables.HereWeights()[k], tables.NextWeights()[k]);
    if (along[k].here + along[k].next != kOne) return false;
  }
  EnlargeBy(factor, source, wholeDown, along, result);
  return true;
}
