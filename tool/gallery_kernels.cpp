#include "tool/gallery_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tool/gallery_sections.h"
#include "tool/gallery_tiles.h"

namespace tool {
namespace {

constexpr double kLowestDecibels = -80;
constexpr double kHighestFrequency = 2;  // cycles per pixel

constexpr char kIntroduction[] = R"html(
<p>Left or above, the weight that a pixel has at a distance. The line is the textbook’s formula. The points
are measured: a bright pixel on grey, enlarged by the plug-in, whose levels are read back as weights. One
level is 1/191, or 0.0052, of a weight, so a point may lie half of that off, 0.0026. The plug-in divides by
the sum of all weights; for the two Lanczos kernels, whose sum is not exactly 1, the comparison does so too,
and their points may lie a percent off the line.</p>
<p>Right or below, what the kernel does to waves, by their frequency: 0 dB keeps them, −20 dB leaves a tenth,
−40 dB a hundredth. The dashed line at 0.5 cycles per pixel is the finest wave that pixels can hold. Left of
it a curve should stay at 0 dB, for detail to stay; right of it it should fall, for what remains there shows
as blocks when enlarging and as false patterns when shrinking.</p>
)html";
static_assert(KernelMeasurement::kBright - KernelMeasurement::kGrey == 191);

std::string Text(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string Id(const Kernel& kernel, const char* what) {
  return "kernel-" + std::to_string(kernel.mode) + "-" + what;
}

std::string CurvePlot(const Kernel& kernel, const std::vector<PlotPoint>& measured) {
  const double edge = kernel.radius + 0.5;
  Plot plot;
  plot.id = Id(kernel, "curve");
  plot.title = std::string("Weights of the ") + kernel.name + " kernel";
  plot.description = "A curve that is highest at distance 0 and ends at " + Text(kernel.radius, 1) +
                     " pixels either side, and points measured along it.";
  plot.x = {-edge, edge,
            kernel.radius > 4   ? 2.0
            : kernel.radius < 1 ? 0.5
                                : 1.0,
            "distance (pixels)"};
  plot.y = {-0.25, 1.1, 0.25, "weight"};
  constexpr int kSteps = 480;
  for (int i = 0; i <= kSteps; ++i) {
    const double x = -edge + 2 * edge * i / kSteps;
    plot.curve.push_back({x, kernel.weight(x)});
  }
  for (const PlotPoint& point : measured) {
    if (std::fabs(point.x) <= edge) plot.dots.push_back(point);
  }
  return SvgPlot(plot);
}

std::string ResponsePlot(const Kernel& kernel) {
  Plot plot;
  plot.id = Id(kernel, "response");
  plot.title = std::string("Frequency response of the ") + kernel.name + " kernel";
  plot.description = "The gain in decibels, from 0 at frequency 0, over 0 to 2 cycles per pixel.";
  plot.x = {0, kHighestFrequency, 0.5, "frequency (cycles per pixel)"};
  plot.y = {kLowestDecibels, 5, 20, "gain (dB)"};
  plot.mark = 0.5;
  const double whole = Gain(kernel, 0);
  constexpr int kSteps = 400;
  for (int i = 0; i <= kSteps; ++i) {
    const double frequency = kHighestFrequency * i / kSteps;
    const double gain = std::fabs(Gain(kernel, frequency) / whole);
    plot.curve.push_back({frequency, 20 * std::log10(gain)});
  }
  return SvgPlot(plot);
}

Show ShowKernel(const Kernel& kernel, KernelMeasurement measurement) {
  return [&kernel, measurement](const TileResult& made) -> Shown {
    const std::vector<PlotPoint> measured = measurement.Measured(made.seen);
    if (measured.empty()) return {"", "The result does not have the size that was asked for."};
    const double error = measurement.LargestError(measured);
    const bool follows = error <= KernelMeasurement::kStep / 2 + 1e-5;
    return {CurvePlot(kernel, measured) + ResponsePlot(kernel),
            std::string("Formula: ") + kernel.source + ". The points " +
                (follows ? "follow it, at most " : "do NOT follow it, up to ") + Text(error, 4) +
                " off."};
  };
}

}  // namespace

// As many points as a plot has room for, whatever the kernel's width.
KernelMeasurement::KernelMeasurement(const Kernel& kernel)
    : kernel_(kernel),
      middle_(int(2 * std::ceil(kernel.radius)) + 2),
      count_(2 * middle_ + 1),
      factor_(std::max(5, 2 * int(10 / (kernel.radius + 1)) + 1)) {}

Subject KernelMeasurement::Impulse() const {
  Bitmap row(count_, 1, false);
  for (host::Rgba& pixel : row.pixels) pixel = {kGrey, kGrey, kGrey, 255};
  row.At(middle_, 0) = {kBright, kBright, kBright, 255};
  return {std::make_shared<const Bitmap>(std::move(row)), "a bright pixel", AlphaEntry::kDrop,
          false};
}

std::vector<std::string> KernelMeasurement::Words() const {
  return {std::to_string(kernel_.mode), std::to_string(count_ * factor_), "1"};
}

std::vector<PlotPoint> KernelMeasurement::Measured(const Bitmap& result) const {
  std::vector<PlotPoint> points;
  if (result.width != count_ * factor_ || result.height != 1) return points;
  for (int i = 0; i < result.width; ++i) {
    const double distance = (i + 0.5) / factor_ - middle_ - 0.5;
    points.push_back({distance, (result.At(i, 0).r - kGrey) * kStep});
  }
  return points;
}

std::vector<PlotPoint> KernelMeasurement::Expected(const std::vector<PlotPoint>& measured) const {
  std::vector<PlotPoint> points;
  for (const PlotPoint& point : measured) {
    points.push_back({point.x, Share(kernel_, point.x, middle_, count_)});
  }
  return points;
}

double KernelMeasurement::LargestError(const std::vector<PlotPoint>& measured) const {
  const std::vector<PlotPoint> expected = Expected(measured);
  double largest = 0;
  for (std::size_t i = 0; i < measured.size(); ++i) {
    largest = std::max(largest, std::fabs(measured[i].y - expected[i].y));
  }
  return largest;
}

GallerySection KernelSection() {
  GallerySection section{"kernels", "Kernels", kIntroduction, "plots", {}};
  for (const Kernel& kernel : kKernels) {
    const KernelMeasurement measurement(kernel);
    section.tiles.push_back({"Mode " + std::to_string(kernel.mode) + ", " + kernel.name,
                             {measurement.Impulse(), "ScalingZVQ", measurement.Words(), {}},
                             ShowKernel(kernel, measurement)});
  }
  return section;
}

}  // namespace tool
