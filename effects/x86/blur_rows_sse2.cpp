// The blur's rows by four pixels at a time.
#include <immintrin.h>

#include "effects/x86/blur_pixels_sse2.h"
#include "effects/x86/blur_variants.h"

namespace blur_sse2 {
namespace {

constexpr std::int32_t kAhead = 512;  // pixels that memory is asked for before they are read

// Sums of four pixels. Narrow: the first and the third channel of a pixel are the halves of its
// word in `first`, the second one is in `second`. Wide: a word for each channel. In both, whole
// words are added and subtracted: a borrow between halves is gone as soon as the result is a true
// sum again.
struct Sums {
  __m128i first, second, third;
};

Sums operator+(const Sums& a, const Sums& b) {
  return {_mm_add_epi32(a.first, b.first), _mm_add_epi32(a.second, b.second),
          _mm_add_epi32(a.third, b.third)};
}

Sums operator-(const Sums& a, const Sums& b) {
  return {_mm_sub_epi32(a.first, b.first), _mm_sub_epi32(a.second, b.second),
          _mm_sub_epi32(a.third, b.third)};
}

struct Constants {
  __m128i readShift, writeShift, opaque;
  __m128i multiplier, shift;
  Sums bias;  // of the division, to be added to sums that are divided
  bool reversed;
};

struct Narrow {
  static constexpr bool kWide = false;

  static Constants Of(const BlurRule& rule) {
    const ChannelMoves moves = MovesOf(rule);
    const __m128i bias = _mm_set1_epi32(static_cast<int>(rule.division.bias * 0x10001U));
    return {_mm_cvtsi32_si128(moves.readShift),
            _mm_cvtsi32_si128(moves.writeShift),
            _mm_set1_epi32(static_cast<int>(moves.opaque)),
            _mm_set1_epi32(static_cast<int>(rule.division.multiplier * 0x10001U)),
            _mm_cvtsi32_si128(rule.division.shift - 16),
            {bias, bias, bias},
            moves.reversed};
  }

  static Sums Channels(const Constants& k, __m128i words) {
    const __m128i colours = _mm_srl_epi32(words, k.readShift);
    return {_mm_and_si128(colours, _mm_set1_epi32(0x00FF00FF)),
            _mm_and_si128(_mm_srli_epi32(colours, 8), _mm_set1_epi32(0xFF)), _mm_setzero_si128()};
  }

  static __m128i Quotients(const Constants& k, __m128i sums) {
    return _mm_srl_epi16(_mm_mulhi_epu16(sums, k.multiplier), k.shift);
  }

  static __m128i Means(const Constants& k, const Sums& sums) {
    __m128i outer = Quotients(k, sums.first);
    if (k.reversed) outer = _mm_shufflehi_epi16(_mm_shufflelo_epi16(outer, 0xB1), 0xB1);
    const __m128i middle = _mm_slli_epi32(Quotients(k, sums.second), 8);
    return _mm_or_si128(_mm_sll_epi32(_mm_or_si128(outer, middle), k.writeShift), k.opaque);
  }
};

// Each word times `factors`, which are equal; the product's low word.
__m128i Times(__m128i words, __m128i factors) {
  const __m128i low = _mm_set1_epi64x(0xFFFFFFFF);
  const __m128i even = _mm_and_si128(_mm_mul_epu32(words, factors), low);
  const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(words, 32), factors);
  return _mm_or_si128(even, _mm_slli_epi64(odd, 32));
}

Sums operator*(const Sums& a, std::int32_t times) {
  const __m128i factors = _mm_set1_epi32(times);
  return {Times(a.first, factors), Times(a.second, factors), Times(a.third, factors)};
}

struct Wide {
  static constexpr bool kWide = true;

  static Constants Of(const BlurRule& rule) {
    const ChannelMoves moves = MovesOf(rule);
    const __m128i zero = _mm_setzero_si128();
    return {_mm_cvtsi32_si128(moves.readShift),
            _mm_cvtsi32_si128(moves.writeShift),
            _mm_set1_epi32(static_cast<int>(moves.opaque)),
            _mm_set1_epi32(static_cast<int>(rule.division.multiplier)),
            _mm_cvtsi32_si128(rule.division.shift),
            {zero, zero, zero},
            moves.reversed};
  }

  static Sums Channels(const Constants& k, __m128i words) {
    const __m128i colours = _mm_srl_epi32(words, k.readShift);
    const __m128i byte = _mm_set1_epi32(0xFF);
    return {_mm_and_si128(colours, byte), _mm_and_si128(_mm_srli_epi32(colours, 8), byte),
            _mm_and_si128(_mm_srli_epi32(colours, 16), byte)};
  }

  static __m128i Quotients(const Constants& k, __m128i sums) {
    const __m128i even = _mm_srl_epi64(_mm_mul_epu32(sums, k.multiplier), k.shift);
    const __m128i odd =
        _mm_srl_epi64(_mm_mul_epu32(_mm_srli_epi64(sums, 32), k.multiplier), k.shift);
    return _mm_or_si128(even, _mm_slli_epi64(odd, 32));
  }

  static __m128i Means(const Constants& k, const Sums& sums) {
    const __m128i low = Quotients(k, k.reversed ? sums.third : sums.first);
    const __m128i high = Quotients(k, k.reversed ? sums.first : sums.third);
    const __m128i middle = Quotients(k, sums.second);
    const __m128i words =
        _mm_or_si128(_mm_or_si128(low, _mm_slli_epi32(middle, 8)), _mm_slli_epi32(high, 16));
    return _mm_or_si128(_mm_sll_epi32(words, k.writeShift), k.opaque);
  }
};

template <typename Form>
Sums LoadSums(const ColumnSums& sums, std::int32_t x) {
  return {Load(sums.first + x), Load(sums.second + x),
          Form::kWide ? Load(sums.third + x) : _mm_setzero_si128()};
}

template <typename Form>
void StoreSums(const ColumnSums& sums, std::int32_t x, const Sums& value) {
  Store(sums.first + x, value.first);
  Store(sums.second + x, value.second);
  if (Form::kWide) Store(sums.third + x, value.third);
}

template <typename Form>
void Add(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* row, std::int32_t width,
         std::int32_t times) {
  const Constants k = Form::Of(rule);
  for (std::int32_t x = 0; x < width; x += kLanes) {
    Sums entering = Form::Channels(k, LoadSome(row + x, width - x));
    if (times != 1) entering = entering * times;
    StoreSums<Form>(sums, x, LoadSums<Form>(sums, x) + entering);
  }
}

template <typename Form>
[[gnu::always_inline]] inline void DownSome(const Constants& k, const ColumnSums& sums,
                                            const std::uint32_t* leaving,
                                            const std::uint32_t* entering, std::uint32_t* dst,
                                            std::int32_t x, std::int32_t count) {
  _mm_prefetch(reinterpret_cast<const char*>(entering + x + kAhead), _MM_HINT_T0);
  const Sums window = LoadSums<Form>(sums, x);
  StoreSome(dst + x, Form::Means(k, window + k.bias), count);
  const Sums change = Form::Channels(k, LoadSome(entering + x, count)) -
                      Form::Channels(k, LoadSome(leaving + x, count));
  StoreSums<Form>(sums, x, window + change);
}

template <typename Form>
void Down(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* leaving,
          const std::uint32_t* entering, std::uint32_t* dst, std::int32_t width) {
  const Constants k = Form::Of(rule);
  std::int32_t x = 0;
  for (; x <= width - kLanes; x += kLanes)
    DownSome<Form>(k, sums, leaving, entering, dst, x, kLanes);
  if (x < width) DownSome<Form>(k, sums, leaving, entering, dst, x, width - x);
}

// Word i becomes the sum of words 0 .. i.
__m128i Prefix(__m128i words) {
  words = _mm_add_epi32(words, _mm_slli_si128(words, 4));
  return _mm_add_epi32(words, _mm_slli_si128(words, 8));
}
Sums Prefix(const Sums& a) { return {Prefix(a.first), Prefix(a.second), Prefix(a.third)}; }

// The last word, in all places.
Sums Last(const Sums& a) {
  return {_mm_shuffle_epi32(a.first, 0xFF), _mm_shuffle_epi32(a.second, 0xFF),
          _mm_shuffle_epi32(a.third, 0xFF)};
}

// The sums of the window around the place before pixel 0, biased, in all places. It holds the first
// pixel radius + 2 times.
template <typename Form>
Sums StartOfRow(const Constants& k, std::int32_t radius, const std::uint32_t* row,
                std::int32_t width) {
  const std::int32_t whole = radius <= width ? radius - 1 : width - 1;
  Sums window = Form::Channels(k, LoadSome(row, 1)) * (radius + 2) +
                Form::Channels(k, LoadSome(row + width - 1, 1)) * (radius - 1 - whole);
  for (std::int32_t x = 1; x <= whole; x += kLanes) {
    window = window + Form::Channels(k, LoadSome(row + x, whole + 1 - x));
  }
  return Last(Prefix(window)) + k.bias;
}

// `window` is that of the pixel before x; becomes that of the last pixel written.
template <typename Form>
[[gnu::always_inline]] inline void AlongSome(const Constants& k, EndlessRow& src,
                                             std::int32_t radius, Sums& window, std::uint32_t* dst,
                                             std::int32_t x, std::int32_t count) {
  const Sums change =
      Form::Channels(k, src.At(x + radius)) - Form::Channels(k, src.At(x - 1 - radius));
  const Sums changes = Prefix(change);
  StoreSome(dst + x, Form::Means(k, window + changes), count);
  window = window + Last(changes);
}

template <typename Form>
void Along(const BlurRule& rule, const std::uint32_t* src, std::uint32_t* dst, std::int32_t width) {
  const Constants k = Form::Of(rule);
  const std::int32_t radius = rule.radius;
  EndlessRow row(src, width);
  Sums window = StartOfRow<Form>(k, radius, src, width);
  std::int32_t x = 0;
  for (; x <= width - kLanes; x += kLanes) AlongSome<Form>(k, row, radius, window, dst, x, kLanes);
  if (x < width) AlongSome<Form>(k, row, radius, window, dst, x, width - x);
}

}  // namespace
}  // namespace blur_sse2

const BlurRows kNarrowBlurSse2 = {blur_sse2::Add<blur_sse2::Narrow>,
                                  blur_sse2::Down<blur_sse2::Narrow>,
                                  blur_sse2::Along<blur_sse2::Narrow>, false};
const BlurRows kWideBlurSse2 = {blur_sse2::Add<blur_sse2::Wide>, blur_sse2::Down<blur_sse2::Wide>,
                                blur_sse2::Along<blur_sse2::Wide>, false};
