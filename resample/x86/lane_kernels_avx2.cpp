#include "resample/x86/lanes_avx2.h"
// What Lanes are comes first.
#include "resample/x86/lane_kernels_body.h"
#include "resample/x86/small_weights_avx2.h"

namespace {

VARNELL_AVX2 void DownAvx2(const FixedWeights& list, const RingBlock* const* pairs, Piece piece,
                           PixelLayout layout, std::uint32_t* result, OpenChannels& counts) {
  const std::int32_t done = FilterDownBySmallWeights(list, pairs, piece, layout, result);
  piece.first += done;
  piece.count -= done;
  if (piece.count > 0) Down(list, pairs, piece, layout, result + done, counts);
}

}  // namespace

const LaneKernels kLaneKernelsAvx2 = {VectorLevel::kAvx2, Spread, Along, DownAvx2, Pick};
