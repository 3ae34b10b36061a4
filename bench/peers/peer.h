// Other libraries as candidates. Each has a file of its own, which is part of the worker where the
// library was found, and registers what it can do.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/work.h"

namespace bench {

// The pictures of a work: 32-bit pixels, rows without gaps, all of their memory touched.
struct Scene {
  Words source, result;
};

inline std::uint8_t* Bytes(Words& words) { return reinterpret_cast<std::uint8_t*>(words.data()); }

// What is timed. It reads the scene's source and fills its result, or one that the library makes.
using Act = std::function<void()>;

struct Peer {
  std::string name;
  // Makes everything that can be made before the clock starts; the scene outlives the act. Empty
  // for work that this peer does not do comparably.
  std::function<Act(const Work&, Scene&)> prepare;
};

// For static initialisers; always true.
bool Register(std::vector<Peer> peers);

// What a library's way of working is comparable with.
bool TakesNearest(const Work& work);     // one pixel for each pixel, enlarging
bool InterpolatesRow(const Work& work);  // shrinking by what lies around a point, no more
bool Interpolates(const Work& work);     // two taps a direction, enlarging
bool WeighsTriangle(const Work& work);   // a triangle, as wide as the factor when shrinking
bool Averages(const Work& work);         // the mean of the area
bool WeighsCubic(const Work& work);      // four taps a direction, times the factor when shrinking
bool WeighsSix(const Work& work);        // six
bool WeighsSixteen(const Work& work);    // sixteen

}  // namespace bench
