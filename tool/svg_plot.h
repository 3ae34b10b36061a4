// Plots of one curve as SVG within a page, in the page's own colours.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tool {

struct PlotPoint {
  double x = 0, y = 0;
};

struct PlotAxis {
  double from = 0, to = 1;
  double step = 1;    // between the labelled lines, which stand at its multiples
  std::string label;  // with its unit
};

struct Plot {
  std::string id;           // unique in the page; letters, digits and hyphens
  std::string title;        // for those who hear the page
  std::string description;  // what the curve looks like, for them too
  PlotAxis x, y;
  std::vector<PlotPoint> curve;  // joined by lines
  std::vector<PlotPoint> dots;   // on top of it
  std::optional<double> mark;    // a dashed line at this x
};

// An svg element of 300 x 204 units that scales with its place. The curve is cut
// off at the edges of the axes; points that are not finite are left out, and it has a gap there.
std::string SvgPlot(const Plot& plot);

}  // namespace tool
