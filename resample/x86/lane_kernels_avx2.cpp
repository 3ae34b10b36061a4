#include "resample/x86/lanes_avx2.h"
// What Lanes are comes first.
#include "resample/x86/lane_kernels_body.h"

const LaneKernels kLaneKernelsAvx2 = {VectorLevel::kAvx2, Spread, Along, Down, Pick};
