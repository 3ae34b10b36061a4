// Computes one row of the smooth enlarger's result; with vector instructions where there are any.
#pragma once

#include <cstdint>

#include "plugin/processor.h"
#include "scale/smooth_tables.h"

// Four neighbouring source rows, from the one before the row underneath to the second after it.
// Clamped at the border, so all four are rows of the source; any multiple of 4 bytes as an address.
struct SmoothSourceRows {
  const unsigned char* taps[4];
  std::int32_t width;  // pixels of 4 bytes
};

struct SmoothRows {
  // Whether the column weights must have been set apart in the tables.
  bool weightsApart;

  // Blends the rows with the weights `down`, then the columns with those of the tables, into
  // `width` pixels at `result`, which is what the tables were made for; all four bytes of each.
  // Touches no pixel outside the rows. The result does not depend on the level.
  void (*enlarge)(const SmoothSourceRows& source, const TapWeights& down,
                  const SmoothTables& tables, unsigned char* result, std::int32_t width);
};

// The best variant for a level. Those with vector instructions can only enlarge: a source that is
// wider than the result needs the scalar one.
const SmoothRows& SmoothRowsFor(VectorLevel level, std::int32_t sourceWidth, std::int32_t width);

// The variants with vector instructions compute two of the four taps in each direction, and clamp
// nothing; every other operation is the scalar one's, in its order. That gives the same bits:
//  - The outer taps weigh +0, and no sum changes when they are added. Down: the sum begins with
//    0 + p·0 = +0, and no later sum is -0, since p >= 0 and the next row's weight is >= +0. Along:
//    x·0 + 0.5 is 0.5, and the sum of the inner taps is not 0.
//  - A weight is 3t² - 2t³ or its complement, with an error below 2^-20: each of its few steps
//  rounds
//    a value of at most 3. So a blend of rows is between -0.001 and 255.001, and the value that is
//    truncated, which has the half and one more blend, between 0.49 and 255.51.
//  - That for AVX2 does not blend a byte which is the same value c in all pixels of both rows. Its
//    value before truncation is between c + 0.49 and c + 0.51 by the same reckoning.
//  - Nor does it read the weights of the columns themselves: such a weight is 1 minus the next
//    column's to the bit, since WeightsFor adds the difference of the same two products to 0 and,
//    with the other sign, to 1.
extern const SmoothRows kSmoothRowsScalar;
#if defined(__i386__) || defined(__x86_64__)
extern const SmoothRows kSmoothRowsSse2;
extern const SmoothRows kSmoothRowsAvx2;
#endif
