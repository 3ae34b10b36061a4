// The inner loops of the fast scaler in vector instructions: functions on rows of pixel words that
// take all four bytes of a word alike and know nothing of channels, except for Recolouring.
#pragma once

#include <cstdint>

#include "pixels/recolouring.h"
#include "plugin/processor.h"

// floor(sum / divisor) = sum·multiplier >> (16 + shift) for 2 <= divisor <= kWidestNarrow and every
// sum up to 255·divisor. With k = 16 + shift and 0 <= e = multiplier·divisor - 2^k < divisor, the
// left side is off by sum·e / (divisor·2^k), which cannot reach the next integer as long as
// sum·e < 2^k. 2^k is more than 2^15·divisor, or e is 0: 255·divisor·(divisor - 1) is less.
struct Division {
  std::uint16_t multiplier;
  std::int32_t shift;
};
inline constexpr std::int32_t kWidestNarrow = 128;
Division DivisionBy(std::int32_t divisor);

// Every pointer may be any address that is a multiple of 4. Nothing outside the named pixels is
// read or written. Sources and results do not overlap unless it is said.
struct FastRows {
  VectorLevel level;

  // `count` must be 0 or at least this for Pick and the averages. From columns[i] on, at least
  // `reach` source pixels must be there; for Pick pickReach.
  std::int32_t least;
  std::int32_t pickReach;

  // columns[k] = trunc(step·(first + k)); all of them must lie in 0..2^31 - 1.
  void (*columns)(double step, std::int32_t first, std::int32_t count, std::int32_t* columns);

  // result[i] = source[columns[i]]. Columns grow by 0 or 1.
  void (*pick)(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
               std::uint32_t* result);

  // Each byte of result[i] is the mean, rounded down, of that byte in the `blockWidth` pixels from
  // source[columns[i]] on. Narrow: 2..kWidestNarrow pixels, wide: 2..kWidestWide. Reach:
  // blockWidth rounded up to a multiple of 4. Columns grow by at most blockWidth.
  void (*averageNarrow)(const std::uint32_t* source, const std::int32_t* columns,
                        std::int32_t count, std::int32_t blockWidth, std::uint32_t* result);
  void (*averageWide)(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
                      std::int32_t blockWidth, std::uint32_t* result);

  // Source and result may be the same row.
  void (*recolour)(const Recolouring& change, const std::uint32_t* source, std::int32_t count,
                   std::uint32_t* result);

  // Copies past the caches. Other threads may see it only after settle().
  void (*stream)(const std::uint32_t* source, std::int32_t count, std::uint32_t* result);
  void (*settle)();
};

// For wider blocks sums leave the integers that single precision has.
inline constexpr std::int32_t kWidestWide = 65536;

// Null when there is nothing but the definition: for kScalar, and on other processors.
const FastRows* FastRowsFor(VectorLevel level);
