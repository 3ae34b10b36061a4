// BlurZVQ through the loaded plug-in: results worked out by hand, radii, sizes, formats.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

constexpr auto kDesktop = host::ApplicationKind::kDesktop;
constexpr auto kConsole = host::ApplicationKind::kConsole;

struct BlurCase {
  const char* name;
  host::ApplicationKind kind;
  int resultFormat;
  Image source;
  double radius;
  Image expected;
};

class BlurByHand : public testing::TestWithParam<BlurCase> {};

TEST_P(BlurByHand, GivesTheseWords) {
  const BlurCase& c = GetParam();
  support::LoadedPlugin plugin({.kind = c.kind, .newPixelFormat = c.resultFormat});
  host::Picture* source = support::PictureOf(plugin.Host(), c.source);
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {c.radius, 0});
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_NE(report.ResultPicture(), source);
  EXPECT_EQ(support::Difference(c.expected, support::ImageOf(*report.ResultPicture())), "");
  EXPECT_EQ(support::Difference(c.source, support::ImageOf(*source)), "");
}

// clang-format off
const BlurCase kCases[] = {
    // Windows (0, 0, 255) and (0, 255, 255).
    {"TwoPixelsShareByThirds", kDesktop, 5, Words(5, {{0, 255}}), 1, Words(5, {{0xFF000055, 0xFF0000AA}})},
    // (10+10+20)/3 = 13, (10+20+60)/3 = 30, (20+60+60)/3 = 46.7.
    {"MeansAlongARowAreTruncated", kDesktop, 5, Words(5, {{10, 20, 60}}), 1,
     Words(5, {{0xFF00000D, 0xFF00001E, 0xFF00002E}})},
    {"MeansDownAColumnAreTruncated", kDesktop, 5, Words(5, {{10}, {20}, {60}}), 1,
     Words(5, {{0xFF00000D}, {0xFF00001E}, {0xFF00002E}})},
    // Columns first: 85 170 / 170 85; then (85+85+170)/3 = 113, (85+170+170)/3 = 141.
    {"BothDirectionsAreBlurred", kDesktop, 5, Words(5, {{0, 255}, {255, 0}}), 1,
     Words(5, {{0xFF000071, 0xFF00008D}, {0xFF00008D, 0xFF000071}})},
    // Columns: (1+1+0)/3 = 0, (2+2+1)/3 = 1, then (0+0+1)/3 = 0; the mean of all nine would be 9/9 = 1.
    {"EachPassTruncatesByItself", kDesktop, 5, Words(5, {{1, 2}, {0, 1}}), 1,
     Words(5, {{0xFF000000, 0xFF000000}, {0xFF000000, 0xFF000000}})},
    // Columns: 0 1 / 0 2, then rows: 0 0 / 0 1. Rows before columns would give 0 1 / 1 2.
    {"ColumnsComeBeforeRows", kDesktop, 5, Words(5, {{0, 0}, {1, 4}}), 1,
     Words(5, {{0xFF000000, 0xFF000000}, {0xFF000000, 0xFF000001}})},
    // Radius 2: (0+0+0+255+255)/5 = 102, (0+0+255+255+255)/5 = 153.
    {"ARadiusAsLargeAsThePicture", kDesktop, 5, Words(5, {{0, 255}}), 2, Words(5, {{0xFF000066, 0xFF000099}})},
    // Radius 10: 10 and 11 of 21 are 255: 2550/21 = 121.4, 2805/21 = 133.6.
    {"ARadiusBeyondThePicture", kDesktop, 5, Words(5, {{0, 255}}), 10, Words(5, {{0xFF000079, 0xFF000085}})},
    {"ARadiusBeyondThePictureDownwards", kDesktop, 5, Words(5, {{0}, {255}}), 10,
     Words(5, {{0xFF000079}, {0xFF000085}})},
    // The whole part counts: 1.7 is 1.
    {"AFractionOfTheRadiusIsDropped", kDesktop, 5, Words(5, {{0, 255}}), 1.7, Words(5, {{0xFF000055, 0xFF0000AA}})},
    {"AnyFractionOfTheRadiusIsDropped", kDesktop, 5, Words(5, {{0, 255}}), 1.9999999,
     Words(5, {{0xFF000055, 0xFF0000AA}})},
    // Blue, green, red from the low byte up; the top byte becomes 0.
    {"HostBuffersGetATopByteOfZero", kConsole, 8, Words(8, {{0xFF0000FF, 0x80FF0000}}), 1,
     Words(8, {{0x005500AA, 0x00AA0055}})},
    {"AlphaIsNotBlurred", kDesktop, 1, Words(1, {{0x00302010, 0xFF302010, 0x80302010}}), 1,
     Words(1, {{0xFF302010, 0xFF302010, 0xFF302010}})},
    // Red 0x11, green 0x22, blue 0x33 are written alpha-first, 0x332211FF; read red-first that is red 0xFF, green
    // 0x11, blue 0x22.
    {"RowsAreReadByTheSourcesLayout", kDesktop, 6, Words(1, {{0x00332211}}), 1, Words(6, {{0x2211FFFF}})},
    // The other way round: written 0xFF332211, read alpha-first: red 0x22, green 0x33, blue 0xFF.
    {"RowsAreReadByTheSourcesLayoutAlphaFirst", kDesktop, 5, Words(2, {{0x332211AA}}), 1, Words(5, {{0xFFFF3322}})},
    {"FormatsOfOneLayoutExchangeNothing", kDesktop, 4, Words(2, {{0x332211AA}}), 1, Words(4, {{0x332211FF}})},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Blur, BlurByHand, testing::ValuesIn(kCases), support::CaseName<BlurCase>);

struct Size {
  int width, height;
};

TEST(Blur, OneColourStaysExactlyAsItWas) {
  const Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {6, 5}, {31, 20}, {128, 3}};
  const double radii[] = {1, 1.5, 2, 3, 4, 7, 8, 20, 64, 255, 1000};
  for (const std::uint32_t word : {0x12345678U, 0xFFFFFFFFU, 0x00000000U, 0x01FE80FFU}) {
    support::LoadedPlugin plugin({.newPixelFormat = 2});
    for (const Size& size : sizes) {
      const Image image = oracle::NewImage(size.width, size.height, 4, word);
      host::Picture* source = support::PictureOf(plugin.Host(), image);
      const Image expected = oracle::NewImage(size.width, size.height, 2, word | 0xFF);
      for (const double radius : radii) {
        const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {radius, 0});
        ASSERT_NE(report.ResultPicture(), nullptr);
        EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "")
            << size.width << "x" << size.height << ", radius " << radius;
        plugin.Host().Release(report.ResultPicture());
      }
    }
  }
}

TEST(Blur, EveryLevelOfOneColourSurvives) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  for (std::uint32_t level = 0; level < 256; ++level) {
    const std::uint32_t word = level | (255 - level) << 8 | (level * 7 % 256) << 16;
    host::Picture* source = support::PictureOf(plugin.Host(), oracle::NewImage(3, 2, 5, word));
    const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {5, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Difference(oracle::NewImage(3, 2, 5, word | 0xFF000000),
                                  support::ImageOf(*report.ResultPicture())),
              "");
  }
}

// A radius so large that the sums near the end of their range: the border outweighs everything.
TEST(Blur, AVeryLargeRadiusGivesTheMeanOfTheBorders) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  host::Picture* source = support::PictureOf(plugin.Host(), Words(5, {{255, 0, 0, 255, 1}}));
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {30000, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  // Of 60001 pixels, column 0 sees 30001 of 255, two of 0, one of 255, 29997 of 1: 128.006. Each
  // column further to the right sees one 255 less at the left and one 1 more: 0.0042 less.
  EXPECT_EQ(
      support::Difference(Words(5, {{0xFF000080, 0xFF000080, 0xFF00007F, 0xFF00007F, 0xFF00007F}}),
                          support::ImageOf(*report.ResultPicture())),
      "");
}

TEST(Blur, SmallAndImpossibleRadiiGiveTheReceiverItself) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double radii[] = {0.9,       0.0,        -0.0,          0.99999999,
                          -1.0,      -100.5,     1e-300,        std::nan(""),
                          kInfinity, -kInfinity, 2147483648.0,  -2147483649.0,
                          1e300,     -1e300,     -2147483648.0, 4294967297.0};
  for (const double radius : radii) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 3});
    plugin.Host().Calls().Clear();
    const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {radius, 1});
    EXPECT_EQ(report.ResultPicture(), source) << radius;
    EXPECT_EQ(source->References(), 2) << radius;
    EXPECT_EQ(support::Complaints(report), "") << radius;
    EXPECT_EQ(plugin.Host().Calls().Calls(),
              std::vector<std::string>({"REALLockObject(Picture#1)"}));
  }
}

TEST(Blur, ANilPictureGivesNilWithoutAnyCall) {
  support::LoadedPlugin plugin;
  for (const double radius : {0.0, 0.9, 1.0, 5.0, 1048575.0, std::nan("")}) {
    plugin.Host().Calls().Clear();
    const host::CallReport report = plugin.Library().Call("BlurZVQ", nullptr, {radius, 1});
    EXPECT_EQ(report.ResultPicture(), nullptr) << radius;
    EXPECT_TRUE(plugin.Host().Calls().Lines().empty()) << radius;
    EXPECT_TRUE(plugin.Host().Raised().empty());
  }
}

TEST(Blur, SidesAbove32767GiveNil) {
  for (const bool alpha : {false, true}) {
    for (const Size& size : {Size{32768, 1}, Size{1, 32768}}) {
      support::LoadedPlugin plugin;
      host::Picture* source = plugin.Host().NewPicture(
          {.width = size.width, .height = size.height, .pixelFormat = 2, .hasAlphaChannel = alpha});
      plugin.Host().Calls().Clear();
      const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 0});
      EXPECT_EQ(report.ResultPicture(), nullptr) << size.width;
      EXPECT_EQ(support::Complaints(report), "");
      for (const std::string& call : plugin.Host().Calls().Calls()) {
        EXPECT_FALSE(call.starts_with("newPicture")) << "the host was asked for the picture";
      }
    }
  }
}

TEST(Blur, TheLargestSidesAreBlurred) {
  for (const Size& size : {Size{32767, 1}, Size{1, 32767}}) {
    support::LoadedPlugin plugin({.newPixelFormat = 5});
    Image image = oracle::NewImage(size.width, size.height, 5, 0);
    image.words.back() = 0xFF;
    const host::CallReport report =
        plugin.Library().Call("BlurZVQ", support::PictureOf(plugin.Host(), image), {1, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    for (auto& word : image.words) word = 0xFF000000;
    image.words.back() = 0xFF0000AA;
    image.words.at(image.words.size() - 2) = 0xFF000055;
    EXPECT_EQ(support::Difference(image, support::ImageOf(*report.ResultPicture())), "");
  }
}

TEST(Blur, ASourceWithAnAlphaChannelGivesAnOpaquePicture) {
  for (const double version : {2011.0, 2013.04}) {  // also where pictures with alpha cannot be made
    for (const int format : {1, 2}) {
      support::LoadedPlugin plugin(
          {.version = version, .newPixelFormat = format + 4, .alphaPixelFormat = format});
      const Image clear = oracle::NewImage(2, 2, format, oracle::Pack(format, 90, 60, 30, 0));
      host::Picture* source = support::PictureOf(plugin.Host(), clear, {.hasAlphaChannel = true});
      const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {3, 0});
      ASSERT_NE(report.ResultPicture(), nullptr);
      EXPECT_EQ(support::Complaints(report), "");
      EXPECT_FALSE(report.ResultPicture()->HasAlphaChannel());
      EXPECT_EQ(support::Difference(
                    oracle::NewImage(2, 2, format + 4, oracle::PackOpaque(format, 90, 60, 30)),
                    support::ImageOf(*report.ResultPicture())),
                "");
    }
  }
}

}  // namespace
