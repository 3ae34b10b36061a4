// The blur's rows by eight pixels at a time; see blur_rows_sse2.cpp, whose shape this has. Channels
// change places by byte shuffles here.
#include <immintrin.h>

#include "effects/x86/blur_pixels_avx2.h"
#include "effects/x86/blur_variants.h"

namespace blur_avx2 {
namespace {

constexpr std::int32_t kAhead = 512;  // pixels that memory is asked for before they are read

struct Sums {
  __m256i first, second, third;
};

VARNELL_AVX2 inline Sums Plus(const Sums& a, const Sums& b) {
  return {_mm256_add_epi32(a.first, b.first), _mm256_add_epi32(a.second, b.second),
          _mm256_add_epi32(a.third, b.third)};
}

VARNELL_AVX2 inline Sums Minus(const Sums& a, const Sums& b) {
  return {_mm256_sub_epi32(a.first, b.first), _mm256_sub_epi32(a.second, b.second),
          _mm256_sub_epi32(a.third, b.third)};
}

VARNELL_AVX2 inline Sums Times(const Sums& a, std::int32_t times) {
  const __m256i factors = _mm256_set1_epi32(times);
  return {_mm256_mullo_epi32(a.first, factors), _mm256_mullo_epi32(a.second, factors),
          _mm256_mullo_epi32(a.third, factors)};
}

constexpr std::uint32_t kNone = 0x80;  // makes a byte 0

// A shuffle that does in each pixel what `bytes` says, a byte's origin from the low byte up.
VARNELL_AVX2 inline __m256i Shuffle(std::uint32_t bytes) {
  const __m256i pixels = _mm256_setr_epi32(0, 0x04040404, 0x08080808, 0x0C0C0C0C, 0, 0x04040404,
                                           0x08080808, 0x0C0C0C0C);
  return _mm256_or_si256(_mm256_set1_epi32(static_cast<int>(bytes)), pixels);
}

constexpr std::uint32_t Bytes(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  return a | b << 8 | c << 16 | d << 24;
}

struct Constants {
  __m256i first, second, third;  // shuffles that take the sums' parts out of pixel words
  __m256i write, opaque;         // a shuffle of the means' lowest three bytes, and what it leaves
  __m256i multiplier;
  __m128i shift;
  Sums bias;
};

VARNELL_AVX2 inline __m256i WriteShuffle(const ChannelMoves& moves) {
  std::uint32_t bytes = moves.reversed ? Bytes(2, 1, 0, kNone) : Bytes(0, 1, 2, kNone);
  if (moves.writeShift != 0) bytes = bytes << 8 | kNone;
  return Shuffle(bytes);
}

struct Narrow {
  static constexpr bool kWide = false;

  VARNELL_AVX2 static Constants Of(const BlurRule& rule) {
    const ChannelMoves moves = MovesOf(rule);
    const std::uint32_t at = static_cast<std::uint32_t>(moves.readShift) / 8;
    const __m256i bias = _mm256_set1_epi32(static_cast<int>(rule.division.bias * 0x10001U));
    return {Shuffle(Bytes(at, kNone, at + 2, kNone)),
            Shuffle(Bytes(at + 1, kNone, kNone, kNone)),
            _mm256_setzero_si256(),
            WriteShuffle(moves),
            _mm256_set1_epi32(static_cast<int>(moves.opaque)),
            _mm256_set1_epi32(static_cast<int>(rule.division.multiplier * 0x10001U)),
            _mm_cvtsi32_si128(rule.division.shift - 16),
            {bias, bias, bias}};
  }

  VARNELL_AVX2 static Sums Channels(const Constants& k, __m256i words) {
    return {_mm256_shuffle_epi8(words, k.first), _mm256_shuffle_epi8(words, k.second),
            _mm256_setzero_si256()};
  }

  VARNELL_AVX2 static __m256i Quotients(const Constants& k, __m256i sums) {
    return _mm256_srl_epi16(_mm256_mulhi_epu16(sums, k.multiplier), k.shift);
  }

  VARNELL_AVX2 static __m256i Means(const Constants& k, const Sums& sums) {
    const __m256i middle = _mm256_slli_epi32(Quotients(k, sums.second), 8);
    const __m256i means = _mm256_or_si256(Quotients(k, sums.first), middle);
    return _mm256_or_si256(_mm256_shuffle_epi8(means, k.write), k.opaque);
  }
};

struct Wide {
  static constexpr bool kWide = true;

  VARNELL_AVX2 static Constants Of(const BlurRule& rule) {
    const ChannelMoves moves = MovesOf(rule);
    const std::uint32_t at = static_cast<std::uint32_t>(moves.readShift) / 8;
    const __m256i zero = _mm256_setzero_si256();
    return {Shuffle(Bytes(at, kNone, kNone, kNone)),
            Shuffle(Bytes(at + 1, kNone, kNone, kNone)),
            Shuffle(Bytes(at + 2, kNone, kNone, kNone)),
            WriteShuffle(moves),
            _mm256_set1_epi32(static_cast<int>(moves.opaque)),
            _mm256_set1_epi32(static_cast<int>(rule.division.multiplier)),
            _mm_cvtsi32_si128(rule.division.shift),
            {zero, zero, zero}};
  }

  VARNELL_AVX2 static Sums Channels(const Constants& k, __m256i words) {
    return {_mm256_shuffle_epi8(words, k.first), _mm256_shuffle_epi8(words, k.second),
            _mm256_shuffle_epi8(words, k.third)};
  }

  VARNELL_AVX2 static __m256i Quotients(const Constants& k, __m256i sums) {
    const __m256i even = _mm256_srl_epi64(_mm256_mul_epu32(sums, k.multiplier), k.shift);
    const __m256i odd =
        _mm256_srl_epi64(_mm256_mul_epu32(_mm256_srli_epi64(sums, 32), k.multiplier), k.shift);
    return _mm256_or_si256(even, _mm256_slli_epi64(odd, 32));
  }

  VARNELL_AVX2 static __m256i Means(const Constants& k, const Sums& sums) {
    const __m256i middle = _mm256_slli_epi32(Quotients(k, sums.second), 8);
    const __m256i high = _mm256_slli_epi32(Quotients(k, sums.third), 16);
    const __m256i means = _mm256_or_si256(_mm256_or_si256(Quotients(k, sums.first), middle), high);
    return _mm256_or_si256(_mm256_shuffle_epi8(means, k.write), k.opaque);
  }
};

template <typename Form>
VARNELL_AVX2 inline Sums LoadSums(const ColumnSums& sums, std::int32_t x, std::int32_t count) {
  return {LoadSome(sums.first + x, count), LoadSome(sums.second + x, count),
          Form::kWide ? LoadSome(sums.third + x, count) : _mm256_setzero_si256()};
}

template <typename Form>
VARNELL_AVX2 inline void StoreSums(const ColumnSums& sums, std::int32_t x, const Sums& value,
                                   std::int32_t count) {
  StoreSome(sums.first + x, value.first, count);
  StoreSome(sums.second + x, value.second, count);
  if (Form::kWide) StoreSome(sums.third + x, value.third, count);
}

template <typename Form>
VARNELL_AVX2 void Add(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* row,
                      std::int32_t width, std::int32_t times) {
  const Constants k = Form::Of(rule);
  for (std::int32_t x = 0; x < width; x += kLanes) {
    Sums entering = Form::Channels(k, LoadSome(row + x, width - x));
    if (times != 1) entering = Times(entering, times);
    StoreSums<Form>(sums, x, Plus(LoadSums<Form>(sums, x, width - x), entering), width - x);
  }
}

template <typename Form>
[[gnu::always_inline]] VARNELL_AVX2 inline void DownSome(const Constants& k, const ColumnSums& sums,
                                                         const std::uint32_t* leaving,
                                                         const std::uint32_t* entering,
                                                         std::uint32_t* dst, std::int32_t x,
                                                         std::int32_t count) {
  _mm_prefetch(reinterpret_cast<const char*>(entering + x + kAhead), _MM_HINT_T0);
  const Sums window = LoadSums<Form>(sums, x, count);
  StoreSome(dst + x, Form::Means(k, Plus(window, k.bias)), count);
  const Sums change = Minus(Form::Channels(k, LoadSome(entering + x, count)),
                            Form::Channels(k, LoadSome(leaving + x, count)));
  StoreSums<Form>(sums, x, Plus(window, change), count);
}

template <typename Form>
VARNELL_AVX2 void Down(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* leaving,
                       const std::uint32_t* entering, std::uint32_t* dst, std::int32_t width) {
  const Constants k = Form::Of(rule);
  std::int32_t x = 0;
  for (; x <= width - kLanes; x += kLanes)
    DownSome<Form>(k, sums, leaving, entering, dst, x, kLanes);
  if (x < width) DownSome<Form>(k, sums, leaving, entering, dst, x, width - x);
}

// Word i becomes the sum of words 0 .. i.
VARNELL_AVX2 inline __m256i Prefix(__m256i words) {
  words = _mm256_add_epi32(words, _mm256_slli_si256(words, 4));
  words = _mm256_add_epi32(words, _mm256_slli_si256(words, 8));
  const __m256i lasts = _mm256_shuffle_epi32(words, 0xFF);
  return _mm256_add_epi32(words, _mm256_permute2x128_si256(lasts, lasts, 0x08));
}
VARNELL_AVX2 inline Sums PrefixOf(const Sums& a) {
  return {Prefix(a.first), Prefix(a.second), Prefix(a.third)};
}

// The last word, in all places.
VARNELL_AVX2 inline __m256i Last(__m256i words) {
  return _mm256_permute4x64_epi64(_mm256_shuffle_epi32(words, 0xFF), 0xFF);
}
VARNELL_AVX2 inline Sums LastOf(const Sums& a) {
  return {Last(a.first), Last(a.second), Last(a.third)};
}

// The sums of the window around the place before pixel 0, biased, in all places. It holds the first
// pixel radius + 2 times.
template <typename Form>
VARNELL_AVX2 inline Sums StartOfRow(const Constants& k, std::int32_t radius,
                                    const std::uint32_t* row, std::int32_t width) {
  const std::int32_t whole = radius <= width ? radius - 1 : width - 1;
  Sums window = Plus(Times(Form::Channels(k, LoadSome(row, 1)), radius + 2),
                     Times(Form::Channels(k, LoadSome(row + width - 1, 1)), radius - 1 - whole));
  for (std::int32_t x = 1; x <= whole; x += kLanes) {
    window = Plus(window, Form::Channels(k, LoadSome(row + x, whole + 1 - x)));
  }
  return Plus(LastOf(PrefixOf(window)), k.bias);
}

// `window` is that of the pixel before x; becomes that of the last pixel written.
template <typename Form>
[[gnu::always_inline]] VARNELL_AVX2 inline void AlongSome(const Constants& k, EndlessRow& src,
                                                          std::int32_t radius, Sums& window,
                                                          std::uint32_t* dst, std::int32_t x,
                                                          std::int32_t count) {
  const Sums change =
      Minus(Form::Channels(k, src.At(x + radius)), Form::Channels(k, src.At(x - 1 - radius)));
  const Sums changes = PrefixOf(change);
  StoreSome(dst + x, Form::Means(k, Plus(window, changes)), count);
  window = Plus(window, LastOf(changes));
}

template <typename Form>
VARNELL_AVX2 void Along(const BlurRule& rule, const std::uint32_t* src, std::uint32_t* dst,
                        std::int32_t width) {
  const Constants k = Form::Of(rule);
  const std::int32_t radius = rule.radius;
  EndlessRow row(src, width);
  Sums window = StartOfRow<Form>(k, radius, src, width);
  std::int32_t x = 0;
  for (; x <= width - kLanes; x += kLanes) AlongSome<Form>(k, row, radius, window, dst, x, kLanes);
  if (x < width) AlongSome<Form>(k, row, radius, window, dst, x, width - x);
}

}  // namespace
}  // namespace blur_avx2

const BlurRows kNarrowBlurAvx2 = {blur_avx2::Add<blur_avx2::Narrow>,
                                  blur_avx2::Down<blur_avx2::Narrow>,
                                  blur_avx2::Along<blur_avx2::Narrow>, false};
const BlurRows kWideBlurAvx2 = {blur_avx2::Add<blur_avx2::Wide>, blur_avx2::Down<blur_avx2::Wide>,
                                blur_avx2::Along<blur_avx2::Wide>, false};
