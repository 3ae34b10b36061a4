#include "tool/svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tool/html.h"

namespace tool {
namespace {

constexpr double kWidth = 300, kHeight = 204;
constexpr double kLeft = 52, kRight = 292, kTop = 8, kBottom = 160;

// With at most `decimals` digits behind the point, none of them a closing zero; a true minus sign.
std::string Number(double value, int decimals, const char* minus = "-") {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, std::fabs(value));
  std::string number = text;
  if (decimals > 0) {
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
  }
  return value < 0 && number != "0" ? minus + number : number;
}

class Frame {
 public:
  explicit Frame(const Plot& plot) : plot_(plot) {}

  double X(double x) const { return kLeft + Part(plot_.x, x) * (kRight - kLeft); }
  double Y(double y) const { return kBottom - Part(plot_.y, y) * (kBottom - kTop); }
  std::string Place(const PlotPoint& point) const {
    return Number(X(point.x), 2) + " " + Number(Y(point.y), 2);
  }

 private:
  static double Part(const PlotAxis& axis, double value) {
    return (value - axis.from) / (axis.to - axis.from);
  }
  const Plot& plot_;
};

std::string Line(const char* kind, double x1, double y1, double x2, double y2) {
  return std::string("<path class=\"") + kind + "\" d=\"M" + Number(x1, 2) + " " + Number(y1, 2) +
         "L" + Number(x2, 2) + " " + Number(y2, 2) + "\"/>\n";
}

std::string Text(double x, double y, const char* kind, const std::string& text) {
  return "<text class=\"" + std::string(kind) + "\" x=\"" + Number(x, 2) + "\" y=\"" +
         Number(y, 2) + "\">" + EscapeHtml(text) + "</text>\n";
}

// The multiples of the step within the axis.
std::vector<double> Ticks(const PlotAxis& axis) {
  std::vector<double> ticks;
  const int last = int(std::floor(axis.to / axis.step + 1e-9));
  for (int i = int(std::ceil(axis.from / axis.step - 1e-9)); i <= last; ++i) {
    ticks.push_back(i * axis.step);
  }
  return ticks;
}

std::string Grid(const Plot& plot, const Frame& frame) {
  std::string svg;
  for (const double tick : Ticks(plot.x)) {
    const double x = frame.X(tick);
    svg += Line(tick == 0 && plot.x.from < 0 ? "axis" : "grid", x, kTop, x, kBottom);
    svg += Text(x, kBottom + 16, "tick-x", Number(tick, 3, "−"));
  }
  for (const double tick : Ticks(plot.y)) {
    const double y = frame.Y(tick);
    svg += Line(tick == 0 ? "axis" : "grid", kLeft, y, kRight, y);
    svg += Text(kLeft - 6, y + 4, "tick-y", Number(tick, 3, "−"));
  }
  svg += Text((kLeft + kRight) / 2, kHeight - 8, "label", plot.x.label);
  const double middle = (kTop + kBottom) / 2;
  svg += "<text class=\"label\" transform=\"rotate(-90)\" x=\"" + Number(-middle, 2) +
         "\" y=\"13\">" + EscapeHtml(plot.y.label) + "</text>\n";
  return svg;
}

bool Finite(const PlotPoint& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

std::string CurvePath(const Plot& plot, const Frame& frame) {
  std::string path;
  bool open = false;
  for (const PlotPoint& point : plot.curve) {
    if (Finite(point)) path += (open ? "L" : "M") + frame.Place(point);
    open = Finite(point);
  }
  return path;
}

// Lines without a length, whose round ends are the dots.
std::string DotsPath(const Plot& plot, const Frame& frame) {
  std::string path;
  for (const PlotPoint& point : plot.dots) {
    if (Finite(point)) path += "M" + frame.Place(point) + "h0";
  }
  return path;
}

// Cut off by the axes: in an svg element of its own, with the coordinates of the outer one.
std::string Clipped(const std::string& svg) {
  const std::string place[] = {Number(kLeft, 0), Number(kTop, 0), Number(kRight - kLeft, 0),
                               Number(kBottom - kTop, 0)};
  return "<svg x=\"" + place[0] + "\" y=\"" + place[1] + "\" width=\"" + place[2] + "\" height=\"" +
         place[3] + "\" viewBox=\"" + place[0] + " " + place[1] + " " + place[2] + " " + place[3] +
         "\">" + svg + "</svg>\n";
}

}  // namespace

std::string SvgPlot(const Plot& plot) {
  const Frame frame(plot);
  std::string svg = "<svg class=\"plot\" viewBox=\"0 0 " + Number(kWidth, 0) + " " +
                    Number(kHeight, 0) + "\" role=\"img\" aria-labelledby=\"" + plot.id +
                    "-title " + plot.id + "-description\">\n";
  svg += "<title id=\"" + plot.id + "-title\">" + EscapeHtml(plot.title) + "</title>\n";
  svg += "<desc id=\"" + plot.id + "-description\">" + EscapeHtml(plot.description) + "</desc>\n";
  svg += Grid(plot, frame);
  if (plot.mark) svg += Line("mark", frame.X(*plot.mark), kTop, frame.X(*plot.mark), kBottom);
  svg += Clipped("<path class=\"curve\" d=\"" + CurvePath(plot, frame) + "\"/>");
  if (!plot.dots.empty()) svg += "<path class=\"dots\" d=\"" + DotsPath(plot, frame) + "\"/>\n";
  return svg + "</svg>\n";
}

}  // namespace tool
