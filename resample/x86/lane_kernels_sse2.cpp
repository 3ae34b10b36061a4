#include "resample/x86/lanes_sse2.h"
// What Lanes are comes first.
#include "resample/x86/lane_kernels_body.h"

const LaneKernels kLaneKernelsSse2 = {VectorLevel::kSse2, Spread, Along, Down, Pick};
