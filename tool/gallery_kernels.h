// Reads the weights of a resampling mode back from what the plug-in makes of a single bright pixel.
#pragma once

#include <string>
#include <vector>

#include "tool/gallery_plan.h"
#include "tool/kernel_curves.h"
#include "tool/svg_plot.h"

namespace tool {

// A row of grey pixels with one bright pixel in its middle, enlarged along the row: the brightness
// that each result has above the grey is the bright pixel's share in it.
class KernelMeasurement {
 public:
  explicit KernelMeasurement(const Kernel& kernel);

  Subject Impulse() const;                 // the row
  std::vector<std::string> Words() const;  // the arguments of "ScalingZVQ"

  // The share over the distance from the bright pixel, one point for each pixel of the result;
  // empty when the result does not have the size that was asked for.
  std::vector<PlotPoint> Measured(const Bitmap& result) const;

  // The shares that the formula gives at these points.
  std::vector<PlotPoint> Expected(const std::vector<PlotPoint>& measured) const;

  // The greatest distance between the two.
  double LargestError(const std::vector<PlotPoint>& measured) const;

  // Pixels have whole levels, so each point is known to within half a step, either way.
  static constexpr int kGrey = 64, kBright = 255;
  static constexpr double kStep = 1.0 / (kBright - kGrey);

 private:
  const Kernel& kernel_;
  int middle_;  // where the bright pixel stands
  int count_;   // pixels in the row
  int factor_;  // result pixels for each, odd, so that one has the distance 0
};

}  // namespace tool
