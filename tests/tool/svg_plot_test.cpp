// Curves as SVG.
#include "tool/svg_plot.h"

#include <gtest/gtest.h>

#include <limits>

namespace tool {
namespace {

Plot Small() {
  Plot plot;
  plot.id = "small";
  plot.title = "a < b";
  plot.x = {0, 2, 1, "x & more"};
  plot.y = {-1, 1, 0.5, "y"};
  plot.curve = {{0, 0}, {1, 1}, {2, -1}};
  return plot;
}

std::size_t Count(const std::string& text, const std::string& piece) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(piece, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(SvgPlot, PutsPointsWhereTheAxesSay) {
  const std::string svg = SvgPlot(Small());
  // 240 x 152 units from (52, 8).
  EXPECT_NE(svg.find("class=\"curve\" d=\"M52 84L172 8L292 160\""), std::string::npos) << svg;
  EXPECT_EQ(Count(svg, "class=\"dots\""), 0u);
  EXPECT_EQ(Count(svg, "class=\"mark\""), 0u);
}

TEST(SvgPlot, LabelsTheMultiplesOfTheStep) {
  const std::string svg = SvgPlot(Small());
  for (const char* label : {">0</text>", ">1</text>", ">2</text>", ">0.5</text>", ">−0.5</text>",
                            ">−1</text>", ">x &amp; more</text>", ">y</text>"}) {
    EXPECT_GE(Count(svg, label), 1u) << label;
  }
  EXPECT_EQ(Count(svg, "class=\"tick-x\""), 3u);
  EXPECT_EQ(Count(svg, "class=\"tick-y\""), 5u);
}

TEST(SvgPlot, LeavesAGapWhereTheCurveIsNotFinite) {
  Plot plot = Small();
  const double none = std::numeric_limits<double>::quiet_NaN();
  const double endless = std::numeric_limits<double>::infinity();
  plot.curve = {{none, 0}, {0, 0}, {0.5, -endless}, {1, 1}, {1.5, none}, {endless, 1}, {2, -1}};
  plot.dots = {{1, none}, {1, 0}, {endless, 0}};
  const std::string svg = SvgPlot(plot);
  EXPECT_NE(svg.find("class=\"curve\" d=\"M52 84M172 8M292 160\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("class=\"dots\" d=\"M172 84h0\""), std::string::npos) << svg;
  EXPECT_EQ(svg.find("nan"), std::string::npos);
  EXPECT_EQ(svg.find("inf"), std::string::npos);
}

TEST(SvgPlot, ShowsDotsAndMark) {
  Plot plot = Small();
  plot.dots = {{0, 1}, {2, 0.5}};
  plot.mark = 0.5;
  const std::string svg = SvgPlot(plot);
  EXPECT_NE(svg.find("class=\"dots\" d=\"M52 8h0M292 46h0\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("class=\"mark\" d=\"M112 8L112 160\""), std::string::npos) << svg;
}

TEST(SvgPlot, NamesItselfToThoseWhoHearThePage) {
  const std::string svg = SvgPlot(Small());
  EXPECT_NE(svg.find("aria-labelledby=\"small-title small-description\""), std::string::npos);
  EXPECT_NE(svg.find("<title id=\"small-title\">a &lt; b</title>"), std::string::npos);
  EXPECT_NE(svg.find("<desc id=\"small-description\">"), std::string::npos);
}

}  // namespace
}  // namespace tool
