// Which vector instructions this processor has. Kernels with several variants choose by it.
#pragma once

// Each level has all that the levels before it have. SSE2 is the least that the product runs on.
enum class VectorLevel {
  kScalar,
  kSse2,
  kSse41,  // with SSSE3
  kAvx2,   // with FMA and F16C; kept by the system, too
};

// The best level of this processor; asked for once, then remembered. For the host's thread only.
VectorLevel BestVectorLevel();

// The level that kernels run at. It is the best one; builds for tests have one that is fixed, or
// the best one where that is lower.
VectorLevel ChosenVectorLevel();

// Lets the compiler use a level's instructions in one function. Not in whole files: an inline
// function compiled with them could take the place of its other copies everywhere.
#define VARNELL_SSE41 __attribute__((target("ssse3,sse4.1")))
#define VARNELL_AVX2 __attribute__((target("ssse3,sse4.1,avx,avx2")))
#define VARNELL_AVX2_FMA __attribute__((target("ssse3,sse4.1,avx,avx2,fma,f16c")))
