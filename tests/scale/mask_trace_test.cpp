// The host calls of ScaleImageAndMaskZVQ for the mask, in their order, when all goes well and when
// any of them fails.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/allocation_faults.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kDraw =
    "\"DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
    "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)\"";

// All calls of one scaler that makes `made` of 3×4 pixels from `source`, locked as `type`.
Lines ScalerCalls(const std::string& source, const std::string& made, const std::string& type) {
  return {"REALGetPropValueBool(" + source + ", \"HasAlphaChannel\") = false",
          "REALLockPictureDescription(" + source + ", " + type + ") = 1",
          "REALLockObject(" + source + ")",
          "newPicture(3, 4, 32) = " + made,
          "REALGetPropValueBool(" + made + ", \"HasAlphaChannel\") = false",
          "REALLockPictureDescription(" + made + ", " + type + ") = 1",
          "REALLockObject(" + made + ")",
          "REALUnlockObject(" + made + ")",
          "REALLockObject(" + made + ")",
          "REALPictureClearCache(" + made + ")",
          "unlockPictureDescription(" + made + ")",
          "REALPictureClearCache(" + made + ")",
          "REALUnlockObject(" + made + ")",
          "unlockPictureDescription(" + source + ")",
          "REALUnlockObject(" + source + ")"};
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Lines MaskScaled(const std::string& type) {
  return Lines{"REALGetPictureMask(Picture#1, 0) = Picture#2"} +
         ScalerCalls("Picture#2", "Picture#4", type);
}

const Lines kTarget = {"REALGetPictureMask(Picture#3, 1) = Picture#5"};
const Lines kGraphics = {"pluginPictureGraphicsGetter(Picture#5) = Graphics#6"};
const Lines kDrawn = {"REALLoadObjectMethod(Graphics#6, " + kDraw + ") = DrawPicture",
                      "Graphics#6.DrawPicture(Picture#4, 0, 0, 3, 4, 0, 0, 3, 4)"};
const Lines kNotDrawn = {"REALLoadObjectMethod(Graphics#6, " + kDraw + ") = nil"};
const Lines kUnlockGraphics = {"REALUnlockObject(Graphics#6)"};
const Lines kUnlockTarget = {"REALUnlockObject(Picture#5)"};
const Lines kUnlockScaled = {"REALUnlockObject(Picture#4)"};
const Lines kUnlockMask = {"REALUnlockObject(Picture#2)"};
const Lines kGivenUp = kUnlockTarget + kUnlockScaled + kUnlockMask;
// A row copy between bitmap contexts, and between host buffers.
const Lines kNoCopy = {"REALLockPictureDescription(Picture#4, 10) = 0"};
const Lines kCopy = {"REALLockPictureDescription(Picture#4, 10) = 1",
                     "REALLockPictureDescription(Picture#5, 10) = 1",
                     "unlockPictureDescription(Picture#5)", "unlockPictureDescription(Picture#4)",
                     "REALPictureClearCache(Picture#5)"};
const Lines kMaskUnscaled = {"REALGetPictureMask(Picture#1, 0) = Picture#2",
                             "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                             "REALLockPictureDescription(Picture#2, 8) = 1",
                             "REALLockObject(Picture#2)",
                             "newPicture(3, 4, 32) = nil",
                             "unlockPictureDescription(Picture#2)",
                             "REALUnlockObject(Picture#2)"};
const Lines kMaskUnlocked = {"REALGetPictureMask(Picture#1, 0) = Picture#2",
                             "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                             "REALLockPictureDescription(Picture#2, 10) = 0"};

void FailCall(host::Runtime& runtime, const std::string& entry, int number) {
  runtime.intercept = [=, seen = 0](const host::EntryCall& call) mutable {
    const bool fails = entry == call.entry && ++seen == number;
    return fails ? host::Verdict::kFail : host::Verdict::kProceed;
  };
}

using Arrange = std::function<void(host::Runtime&, host::Picture*)>;

Arrange Withholding(const std::string& entry) {
  return [=](host::Runtime& runtime, host::Picture*) { runtime.Withhold(entry); };
}
Arrange Failing(const std::string& entry, int number) {
  return [=](host::Runtime& runtime, host::Picture*) { FailCall(runtime, entry, number); };
}
void Nothing(host::Runtime&, host::Picture*) {}
void NoMask(host::Runtime& runtime, host::Picture* picture) { runtime.SetMask(picture, nullptr); }
void RefuseMaskLocks(host::Runtime&, host::Picture* picture) {
  picture->Mask()->refuseLocks = true;
}
void NoDrawPicture(host::Runtime& runtime, host::Picture*) {
  runtime.WithholdHostMethod(kDraw.substr(1, kDraw.size() - 2));
}

enum class Mask { kScaled, kNew, kNone };  // kNew: as the host made it, black

struct TraceRow {
  const char* name;
  host::ApplicationKind kind;
  double version;
  Arrange arrange;
  Lines calls;  // from the request for the source's mask on
  Mask mask;
};

const auto kDesktop = host::ApplicationKind::kDesktop;
const auto kConsole = host::ApplicationKind::kConsole;

const TraceRow kRows[] = {
    {"all goes well", kDesktop, 2013.04, Nothing,
     MaskScaled("8") + kTarget + kGraphics + kDrawn + kUnlockGraphics + kGivenUp, Mask::kScaled},
    {"on a console", kConsole, 2013.04, Nothing,
     MaskScaled("10") + kTarget + kGraphics + kDrawn + kUnlockGraphics + kGivenUp, Mask::kScaled},
    {"no mask", kDesktop, 2013.04, NoMask, {"REALGetPictureMask(Picture#1, 0) = nil"}, Mask::kNone},
    {"masks unknown", kDesktop, 2013.04, Withholding("REALGetPictureMask"), {}, Mask::kNone},
    {"mask not made", kDesktop, 2013.04, Failing("newPicture", 2), kMaskUnscaled + kUnlockMask,
     Mask::kNone},
    {"mask not locked", kConsole, 2012.0, RefuseMaskLocks, kMaskUnlocked + kUnlockMask,
     Mask::kNone},
    {"mask not locked on an old host", kConsole, 2011.9, RefuseMaskLocks,
     kMaskUnlocked + Lines{"unlockPictureDescription(Picture#2)"} + kUnlockMask, Mask::kNone},
    {"no target", kDesktop, 2013.04, Failing("REALGetPictureMask", 2),
     MaskScaled("8") + Lines{"REALGetPictureMask(Picture#3, 1) = nil"} + kUnlockScaled +
         kUnlockMask,
     Mask::kNone},
    {"graphics unknown", kDesktop, 2013.04, Withholding("pluginPictureGraphicsGetter"),
     MaskScaled("8") + kTarget + kNoCopy + kGivenUp, Mask::kNew},
    {"graphics unknown on a console", kConsole, 2013.04, Withholding("pluginPictureGraphicsGetter"),
     MaskScaled("10") + kTarget + kCopy + kGivenUp, Mask::kScaled},
    {"no graphics", kDesktop, 2013.04, Failing("pluginPictureGraphicsGetter", 1),
     MaskScaled("8") + kTarget + Lines{"pluginPictureGraphicsGetter(Picture#5) = nil"} + kNoCopy +
         kGivenUp,
     Mask::kNew},
    {"no graphics on a console", kConsole, 2013.04, Failing("pluginPictureGraphicsGetter", 1),
     MaskScaled("10") + kTarget + Lines{"pluginPictureGraphicsGetter(Picture#5) = nil"} + kCopy +
         kGivenUp,
     Mask::kScaled},
    {"no DrawPicture", kDesktop, 2013.04, NoDrawPicture,
     MaskScaled("8") + kTarget + kGraphics + kNotDrawn + kNoCopy + kUnlockGraphics + kGivenUp,
     Mask::kNew},
    {"no DrawPicture on a console", kConsole, 2011.9, NoDrawPicture,
     MaskScaled("10") + kTarget + kGraphics + kNotDrawn + kCopy + kUnlockGraphics + kGivenUp,
     Mask::kScaled},
};

// 2×2 of red 64 to 3×4: all scalers give the same everywhere.
constexpr host::Rgba kMaskColour = {64, 64, 64, 255};

TEST(MaskTrace, FollowsItsFixedOrderWhateverFails) {
  for (const TraceRow& row : kRows) {
    for (const bool antiAlias : {false, true}) {
      SCOPED_TRACE(std::string(row.name) + (antiAlias ? ", smooth" : ", fast"));
      support::LoadedPlugin plugin({.version = row.version, .kind = row.kind});
      host::PictureSpec spec = plugin.Host().NewPictureSpec(2, 2);
      host::Picture* source = plugin.Host().NewPicture(spec);
      spec.fill = kMaskColour;
      plugin.Host().SetMask(source, plugin.Host().NewPicture(spec));
      row.arrange(plugin.Host(), source);
      plugin.Host().Calls().Clear();
      const auto report =
          plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 4, antiAlias, 0});
      EXPECT_EQ(support::Complaints(report), "");

      Lines expected = Lines{"REALGetPropValueInteger(Picture#1, \"Width\") = 2",
                             "REALGetPropValueInteger(Picture#1, \"Height\") = 2",
                             "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false"} +
                       ScalerCalls("Picture#1", "Picture#3", row.kind == kConsole ? "10" : "8") +
                       row.calls;
      Lines calls;
      for (const std::string& line : plugin.Host().Calls().Calls()) {
        if (!line.starts_with("pluginObjectType(")) calls.push_back(line);
      }
      EXPECT_EQ(calls, expected);

      ASSERT_NE(report.ResultPicture(), nullptr);
      const host::Picture* mask = report.ResultPicture()->Mask();
      ASSERT_EQ(mask == nullptr, row.mask == Mask::kNone);
      if (mask == nullptr) continue;
      for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 3; ++x) {
          EXPECT_EQ(mask->Get(x, y).r, row.mask == Mask::kScaled ? kMaskColour.r : 0);
        }
      }
    }
  }
}

TEST(MaskTrace, OnlyHostsBelow2012AreAskedForTheirOwnDrawingRoutine) {
  // Asked once; the answer is not used.
  for (const double version : {2011.9, 2012.0}) {
    support::LoadedPlugin plugin({.version = version, .kind = kConsole});
    host::Picture* source = plugin.Host().NewPicture(plugin.Host().NewPictureSpec(2, 2));
    plugin.Host().SetMask(source, plugin.Host().NewPicture(plugin.Host().NewMaskSpec(2, 2)));
    NoDrawPicture(plugin.Host(), source);
    plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 4, false, 0});
    int asked = 0;
    for (const std::string& line : plugin.Host().Calls().Lines()) {
      asked += line.find("RuntimeGraphicsDrawPicture") != std::string::npos;
    }
    EXPECT_EQ(asked, version < 2012.0 ? 1 : 0);
  }
}

TEST(MaskTrace, AMaskThatADesktopHostDoesNotLockIsReadThroughACopy) {
  support::LoadedPlugin plugin;
  host::PictureSpec spec = plugin.Host().NewPictureSpec(2, 2);
  host::Picture* source = plugin.Host().NewPicture(spec);
  spec.fill = kMaskColour;
  plugin.Host().SetMask(source, plugin.Host().NewPicture(spec));
  source->Mask()->refuseLocks = true;
  const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 4, false, 0});
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  ASSERT_NE(report.ResultPicture()->Mask(), nullptr);
  EXPECT_EQ(report.ResultPicture()->Mask()->Get(2, 3).r, kMaskColour.r);
}

// Such a mask is refused at once, and its one lock stays.
TEST(MaskTrace, AMaskWithoutPixelsOfItsOwnIsLeftOutAndStaysLocked) {
  for (const int format : {0, 7}) {
    support::LoadedPlugin plugin;
    host::Picture* source = plugin.Host().NewPicture({.width = 2, .height = 2});
    host::Picture* mask =
        plugin.Host().NewPicture({.width = 2, .height = 2, .pixelFormat = format});
    plugin.Host().SetMask(source, mask);
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {3, 4, false, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Mask(), nullptr);
    EXPECT_EQ(report.leftOver.size(), 1U);
    EXPECT_EQ(plugin.Host().Book().DescriptionLocks(mask), 1);
    EXPECT_EQ(mask->References(), 1);
  }
}

// The smooth enlarger takes five blocks for the picture and then five for the mask.
TEST(MaskTrace, OneMissingBlockMakesBothFastOrLeavesTheMaskOut) {
  for (int failing = 0; failing <= 10; ++failing) {
    SCOPED_TRACE(failing);
    support::LoadedPlugin plugin;
    host::Picture* source = support::PictureOf(
        plugin.Host(), support::Words(6, {{0x00000000, 0x40404000}, {0x80808000, 0xFFFFFF00}}));
    host::Picture* mask = support::PictureOf(plugin.Host(), support::ImageOf(*source));
    plugin.Host().SetMask(source, mask);
    const support::AllocationWatch watch(failing);
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {4, 4, true, 0});
    EXPECT_EQ(support::Complaints(report), "");
    const host::Picture* result = report.ResultPicture();
    ASSERT_NE(result, nullptr);
    const bool smooth = failing == 0 || failing > 5;
    // Between 0 and 0x40: their mean, or the first of them.
    EXPECT_EQ(result->Get(1, 0).r, smooth ? 0x20 : 0);
    ASSERT_EQ(result->Mask() == nullptr, failing > 5);
    if (failing <= 5) {
      EXPECT_EQ(result->Mask()->Get(1, 0).r, smooth ? 0x20 : 0);
    }
  }
}

}  // namespace
