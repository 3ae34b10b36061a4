// ScaleImageAndMaskZVQ on pictures with an alpha channel: converted to a picture with a mask first,
// without scaling, from the top left.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;
using Lines = std::vector<std::string>;

const std::string kCopyMask = "CopyMask as Picture";
const std::string kAssignMask = "Mask(assigns newMask As Picture)";

// An opaque grey in format 6, and with an alpha in the premultiplied format 2.
constexpr std::uint32_t Grey(std::uint32_t level) {
  return level << 24 | level << 16 | level << 8 | 0xFF;
}
constexpr std::uint32_t Alpha(std::uint32_t level, std::uint32_t alpha) {
  return level << 24 | level << 16 | level << 8 | alpha;
}

host::Picture* AlphaPicture(host::Runtime& runtime, Image image) {
  return support::PictureOf(runtime, image, {.hasAlphaChannel = true});
}

constexpr std::uint32_t kNew = 0x030201FF;  // what new pictures are filled with
const host::RuntimeOptions kOptions = {.newFill = {1, 2, 3, 255}};

struct Row {
  const char* name;
  Image source;  // format 2
  int width, height;
  bool antiAlias;
  Image result, mask;  // format 6
};

// By hand. The colours of the temporary picture are the result's; its mask is scaled as a picture
// of the source's size: black where the source is opaque, white where it is transparent.
const Row kRows[] = {
    {"narrower", Words(2, {{Alpha(10, 255), Alpha(20, 255), Alpha(30, 255)}}), 2, 1, false,
     Words(6, {{Grey(10), Grey(20)}}), Words(6, {{Grey(0), Grey(0)}})},
    // Mask 0 255 51: (0 + 255 + .5) / 2 = 127.75, (255 + 51 + .5) / 2 = 153.25.
    {"narrower, transparent", Words(2, {{Alpha(10, 255), Alpha(0, 0), Alpha(204, 204)}}), 2, 1,
     true, Words(6, {{Grey(10), kNew}}), Words(6, {{Grey(127), Grey(153)}})},
    {"larger", Words(2, {{Alpha(10, 255)}}), 2, 2, false,
     Words(6, {{Grey(10), kNew}, {kNew, kNew}}),
     Words(6, {{Grey(0), Grey(0)}, {Grey(0), Grey(0)}})},
    {"larger, smooth", Words(2, {{Alpha(10, 255)}}), 2, 2, true,
     Words(6, {{Grey(10), kNew}, {kNew, kNew}}),
     Words(6, {{Grey(0), Grey(0)}, {Grey(0), Grey(0)}})},
    // Mask 0 128: t = 0, 1/2, 0, 1/2 gives 0, 64.5, 128, 128.
    {"larger, smooth, half transparent", Words(2, {{Alpha(10, 255)}, {Alpha(0, 127)}}), 2, 4, true,
     Words(6, {{Grey(10), kNew},
               // 1, 2, 3 with half of them taken away, on black: n · 128 / 255 to nearest.
               {0x020101FF, kNew},
               {kNew, kNew},
               {kNew, kNew}}),
     Words(6, {{Grey(0), Grey(0)},
               {Grey(64), Grey(64)},
               {Grey(128), Grey(128)},
               {Grey(128), Grey(128)}})},
    {"wider and lower", Words(2, {{Alpha(10, 255)}, {Alpha(20, 255)}}), 2, 1, true,
     Words(6, {{Grey(10), kNew}}), Words(6, {{Grey(0), Grey(0)}})},
};

TEST(MaskOfAlpha, ShowsTheTopLeftUnscaledAndTheAlphaAsItsMask) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    support::LoadedPlugin plugin(kOptions);
    host::Picture* source = AlphaPicture(plugin.Host(), row.source);
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source,
                                              {row.width, row.height, row.antiAlias, 0});
    EXPECT_EQ(support::Complaints(report), "");
    const host::Picture* result = report.ResultPicture();
    ASSERT_NE(result, nullptr);
    EXPECT_FALSE(result->HasAlphaChannel());
    EXPECT_EQ(support::Difference(row.result, support::ImageOf(*result)), "");
    ASSERT_NE(result->Mask(), nullptr);
    EXPECT_EQ(support::Difference(row.mask, support::ImageOf(*result->Mask())), "");
    EXPECT_EQ(support::Difference(row.source, support::ImageOf(*source)), "");
    EXPECT_EQ(source->Mask(), nullptr);
  }
}

const Image kPair = Words(2, {{Alpha(10, 255), Alpha(0, 0)}});
const std::string kDraw =
    "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
    "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)";

Lines CallsOf(support::LoadedPlugin& plugin, host::Picture* source, int width, int height) {
  plugin.Host().Calls().Clear();
  const auto report =
      plugin.Library().Call("ScaleImageAndMaskZVQ", source, {width, height, false, 0});
  EXPECT_EQ(support::Complaints(report), "");
  return plugin.Host().Calls().Calls();
}

TEST(MaskOfAlpha, IsMadeByCallsInThisOrder) {
  support::LoadedPlugin plugin(kOptions);
  Lines calls = CallsOf(plugin, AlphaPicture(plugin.Host(), kPair), 3, 1);
  const Lines expected = {
      "REALGetPropValueInteger(Picture#1, \"Width\") = 2",
      "REALGetPropValueInteger(Picture#1, \"Height\") = 1",
      "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = true",
      "newPicture(3, 1, 32) = Picture#2",
      "pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
      "REALLoadObjectMethod(Graphics#3, \"" + kDraw + "\") = DrawPicture",
      "Graphics#3.DrawPicture(Picture#1, 0, 0, 3, 1, 0, 0, 3, 1)",
      "REALUnlockObject(Graphics#3)",
      "REALLoadObjectMethod(Picture#1, \"CopyMask as Picture\") = CopyMask",
      "Picture#1.CopyMask() = Picture#4",
      "REALLoadObjectMethod(Picture#2, \"Mask(assigns newMask As Picture)\") = Mask",
      "Picture#2.Mask(Picture#4)",
      "REALUnlockObject(Picture#4)",
  };
  ASSERT_GT(calls.size(), expected.size());
  EXPECT_EQ(calls.back(), "REALUnlockObject(Picture#2)");
  calls.resize(expected.size());
  EXPECT_EQ(calls, expected);
}

struct MissingRow {
  const char* name;
  std::function<void(host::Runtime&)> arrange;
  bool hasMask;
};

std::function<void(host::Runtime&)> Withholding(const std::string& name) {
  return [=](host::Runtime& runtime) { runtime.Withhold(name); };
}
std::function<void(host::Runtime&)> Failing(const std::string& entry) {
  return [=](host::Runtime& runtime) {
    runtime.intercept = [=](const host::EntryCall& call) {
      return entry == call.entry ? host::Verdict::kFail : host::Verdict::kProceed;
    };
  };
}

TEST(MaskOfAlpha, IsLeftOutWhereTheHostCannotMakeOrAssignOne) {
  const MissingRow rows[] = {
      {"nothing missing", Failing("none"), true},
      {"no CopyMask", Withholding(kCopyMask), false},
      {"CopyMask gives none", Failing("CopyMask"), false},
      {"no assignment", Withholding(kAssignMask), false},
      {"the assignment does nothing", Failing("Mask"), false},
      {"no masks", Withholding("REALGetPictureMask"), false},
  };
  for (const MissingRow& row : rows) {
    SCOPED_TRACE(row.name);
    support::LoadedPlugin plugin(kOptions);
    host::Picture* source = AlphaPicture(plugin.Host(), kPair);
    row.arrange(plugin.Host());
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 1, false, 0});
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Difference(Words(6, {{Grey(10), kNew, kNew}}),
                                  support::ImageOf(*report.ResultPicture())),
              "");
    EXPECT_EQ(report.ResultPicture()->Mask() != nullptr, row.hasMask);
  }
}

TEST(MaskOfAlpha, TheAssignmentIsNotAskedForWithoutACopy) {
  support::LoadedPlugin plugin(kOptions);
  Failing("CopyMask")(plugin.Host());
  for (const std::string& line : CallsOf(plugin, AlphaPicture(plugin.Host(), kPair), 3, 1)) {
    EXPECT_EQ(line.find("newMask"), std::string::npos) << line;
  }
}

TEST(MaskOfAlpha, NothingIsDrawnWithoutATemporaryPicture) {
  for (const bool withheld : {false, true}) {
    support::LoadedPlugin plugin(kOptions);
    host::Picture* source = AlphaPicture(plugin.Host(), kPair);
    if (withheld) plugin.Host().Withhold("newPicture");
    Failing("newPicture")(plugin.Host());
    plugin.Host().Calls().Clear();
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 1, false, 0});
    EXPECT_EQ(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(plugin.Host().Calls().Calls().size(), withheld ? 3U : 4U);
  }
}

TEST(MaskOfAlpha, ATemporaryPictureThatCannotBeScaledIsGivenUp) {
  support::LoadedPlugin plugin(kOptions);
  const Lines calls = CallsOf(plugin, AlphaPicture(plugin.Host(), kPair), 32768, 1);
  EXPECT_EQ(calls.at(3), "newPicture(32768, 1, 32) = Picture#2");
  EXPECT_EQ(calls.back(), "REALUnlockObject(Picture#2)");
}

TEST(MaskOfAlpha, IsMadeOnOldHostsToo) {
  support::LoadedPlugin plugin({.version = 2011.03, .newFill = {1, 2, 3, 255}});
  host::Picture* source = AlphaPicture(plugin.Host(), kPair);
  const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {1, 1, false, 0});
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(report.ResultPicture()->Word(0, 0), Grey(10));
}

TEST(MaskOfAlpha, AnAlphaChannelThatIsNotSeenAtFirstIsScaledAsOne) {
  for (const bool withheld : {false, true}) {
    support::LoadedPlugin plugin(kOptions);
    host::Picture* source = AlphaPicture(plugin.Host(), kPair);
    if (withheld) plugin.Host().Withhold("REALGetPropValueBool");
    plugin.Host().intercept = [seen = 0](const host::EntryCall& call) mutable {
      const bool first = std::string(call.entry) == "REALGetPropValueBool" && ++seen == 1;
      return first ? host::Verdict::kFail : host::Verdict::kProceed;
    };
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {4, 1, false, 0});
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->HasAlphaChannel(), !withheld);
    // Stretched, not drawn.
    EXPECT_EQ(report.ResultPicture()->Word(1, 0) >> 8, Grey(10) >> 8);
    EXPECT_EQ(report.ResultPicture()->Mask(), nullptr);
  }
}

// The row copy between host buffers wants one size, which only the source's own request would have.
TEST(MaskOfAlpha, WithoutGraphicsShowsNothingOfTheSource) {
  for (const int width : {1, 3}) {
    support::LoadedPlugin plugin(
        {.kind = host::ApplicationKind::kConsole, .newFill = {1, 2, 3, 255}});
    host::PictureSpec spec = plugin.Host().NewAlphaPictureSpec(2, 1);
    spec.fill = {10, 10, 10, 55};
    host::Picture* source = plugin.Host().NewPicture(spec);
    plugin.Host().Withhold("pluginPictureGraphicsGetter");
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {width, 1, false, 0});
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Word(0, 0), 0x00010203U);
    // The mask is copied by the method, and into the result's mask row by row.
    ASSERT_NE(report.ResultPicture()->Mask(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Mask()->Get(0, 0).r, 200);
  }
}

}  // namespace
