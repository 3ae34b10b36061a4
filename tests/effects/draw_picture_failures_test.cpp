// DrawPictureFZVQ when something is missing: nil arguments, pictures that cannot be locked, old
// hosts.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/effects/drawing.h"
#include "tests/effects/host_calls.h"
#include "tests/support/case_name.h"

namespace {

using oracle::Image;
using support::Words;

const Image kDest = Words(5, {{0x00010203, 0x10203040}});
const Image kSource = Words(5, {{0x000000C8, 0x00000064}});
const Image kMask = Words(5, {{0x00, 0xFF}});

TEST(DrawPictureFailures, NilArgumentsRaiseAndTouchNothing) {
  struct Row {
    bool receiver, picture;
    const char* message;
  };
  for (const Row& row : {Row{false, true, "source is nil"}, Row{true, false, "picture is nil"},
                         Row{false, false, "source is nil"}}) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
    plugin.Host().Calls().Clear();
    const host::Value picture =
        row.picture ? host::Value(pictures.source) : host::Value(std::monostate());
    const host::CallReport report = plugin.Library().Call(
        "DrawPictureFZVQ", row.receiver ? pictures.dest : nullptr, {picture, 0, 0, 1.0, 1});
    EXPECT_FALSE(Flag(report)) << row.message;
    EXPECT_EQ(support::Complaints(report), "") << row.message;
    ASSERT_EQ(plugin.Host().Raised().size(), 1U) << row.message;
    EXPECT_EQ(plugin.Host().Raised()[0].className, "NilObjectException");
    EXPECT_TRUE(plugin.Host().Raised()[0].hasMessage);
    EXPECT_EQ(plugin.Host().Raised()[0].message, row.message);
    EXPECT_EQ(CallsMade(plugin.Host()).find("Picture"), std::string::npos)
        << "a picture was touched";
    EXPECT_EQ(plugin.Host().Yields(), 0);
    EXPECT_EQ(support::Difference(kDest, support::ImageOf(*pictures.dest)), "");
  }
}

TEST(DrawPictureFailures, NothingIsRaisedOtherwise) {
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource);
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  pictures.dest->refuseLocks = true;
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  EXPECT_TRUE(plugin.Host().Raised().empty());
}

struct LockCase {
  const char* name;
  host::ApplicationKind kind;
  double version;
  bool masked;
  int failing;        // which lock
  const char* calls;  // from the failing lock on; 1 is the receiver, 2 the source, 3 the mask
};

class DrawLockFailure : public testing::TestWithParam<LockCase> {};

TEST_P(DrawLockFailure, ReleasesWhatWasLockedAndChangesNothing) {
  const LockCase& c = GetParam();
  const int format = c.kind == host::ApplicationKind::kConsole ? 8 : 5;
  const auto as = [format](Image image) {
    image.format = format;
    return image;
  };
  support::LoadedPlugin plugin({.version = c.version, .kind = c.kind});
  const support::RushingClock clock;
  host::Picture* dest = support::PictureOf(plugin.Host(), as(kDest));
  // With an alpha channel no private copy is made of it.
  host::PictureSpec alpha;
  alpha.hasAlphaChannel = true;
  Image source = as(kSource);
  if (format == 5) source.format = 1;
  host::Picture* drawn = support::PictureOf(plugin.Host(), source, alpha);
  host::Picture* mask = support::PictureOf(plugin.Host(), as(kMask));
  if (c.masked) plugin.Host().SetMask(drawn, mask);
  FailLock(plugin.Host(), c.failing);
  plugin.Host().Calls().Clear();
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", dest, {drawn, 0, 0, 1.0, 1});
  EXPECT_FALSE(Flag(report));
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_TRUE(plugin.Host().Raised().empty());
  EXPECT_EQ(plugin.Host().Yields(), 0);
  EXPECT_EQ(support::Difference(as(kDest), support::ImageOf(*dest)), "");
  std::string calls = CallsMade(plugin.Host());
  std::size_t at = 0;
  for (int i = 0; i < c.failing; ++i) at = calls.find("REALLockPictureDescription", at) + 1;
  calls.erase(0, calls.find('\n', at) + 1);
  EXPECT_EQ(calls, c.calls);
}

constexpr auto kDesktop = host::ApplicationKind::kDesktop;
constexpr auto kConsole = host::ApplicationKind::kConsole;

const char kReleaseDest[] =
    "unlockPictureDescription(Picture#1)\n"
    "REALPictureClearCache(Picture#1)\n"
    "REALUnlockObject(Picture#1)\n";
const char kReleaseMask[] =
    "unlockPictureDescription(Picture#3)\n"
    "REALPictureClearCache(Picture#3)\n"
    "REALUnlockObject(Picture#3)\n"
    "REALUnlockObject(Picture#3)\n";
const char kReleaseBoth[] =
    "unlockPictureDescription(Picture#1)\n"
    "REALPictureClearCache(Picture#1)\n"
    "REALUnlockObject(Picture#1)\n"
    "unlockPictureDescription(Picture#3)\n"
    "REALPictureClearCache(Picture#3)\n"
    "REALUnlockObject(Picture#3)\n"
    "REALUnlockObject(Picture#3)\n";

const LockCase kLockCases[] = {
    {"Mask", kDesktop, 2013.04, true, 1, "REALUnlockObject(Picture#3)\n"},
    {"Receiver", kDesktop, 2013.04, true, 2, kReleaseMask},
    {"Source", kDesktop, 2013.04, true, 3, kReleaseBoth},
    {"ReceiverWithoutMask", kDesktop, 2013.04, false, 1, ""},
    {"SourceWithoutMask", kDesktop, 2013.04, false, 2, kReleaseDest},
    {"MaskOnConsole", kConsole, 2013.04, true, 1, "REALUnlockObject(Picture#3)\n"},
    {"ReceiverOnConsole", kConsole, 2013.04, true, 2, kReleaseMask},
    {"SourceOnConsole", kConsole, 2013.04, true, 3, kReleaseBoth},
    {"MaskOnOldHost", kDesktop, 2011.04, true, 1,
     "unlockPictureDescription(Picture#3)\nREALUnlockObject(Picture#3)\n"},
    {"ReceiverWithoutMaskOnOldHost", kDesktop, 2011.04, false, 1,
     "unlockPictureDescription(Picture#1)\n"},
};

INSTANTIATE_TEST_SUITE_P(DrawPictureFailures, DrawLockFailure, testing::ValuesIn(kLockCases),
                         support::CaseName<LockCase>);

TEST(DrawPictureFailures, AMaskWithoutPixelsCannotBeLocked) {
  for (const int width : {0, 2}) {
    support::LoadedPlugin plugin;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource);
    plugin.Host().SetMask(pictures.source,
                          plugin.Host().NewPicture({.width = width, .height = 2 - width}));
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
    EXPECT_FALSE(Flag(report));
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(support::Difference(kDest, support::ImageOf(*pictures.dest)), "");
  }
}

// Where masks cannot be asked for, the picture is drawn as if it had none.
TEST(DrawPictureFailures, WithoutTheMaskEntryThereIsNoMask) {
  const Image expected = Words(5, {{0xFF0000C8, 0xFF000064}});
  for (const bool withheld : {true, false}) {
    support::LoadedPlugin plugin;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
    if (withheld) {
      plugin.Host().Withhold("REALGetPictureMask");
    } else {
      plugin.Host().intercept = [](const host::EntryCall& call) {
        const bool mask = std::string(call.entry) == "REALGetPictureMask";
        return mask ? host::Verdict::kFail : host::Verdict::kProceed;
      };
    }
    plugin.Host().Calls().Clear();
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
    EXPECT_TRUE(Flag(report));
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(support::Difference(expected, support::ImageOf(*pictures.dest)), "");
    EXPECT_EQ(pictures.mask->CacheClears(), 0);
  }
}

// A mask is never made for a picture that has none.
TEST(DrawPictureFailures, AsksForAnExistingMaskOnly) {
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource);
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  EXPECT_EQ(pictures.source->Mask(), nullptr);
  EXPECT_EQ(pictures.dest->Mask(), nullptr);
}

TEST(DrawPictureFailures, AHostExceptionPassesOutOfEveryLock) {
  for (int failing = 1; failing <= 3; ++failing) {
    support::LoadedPlugin plugin;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
    plugin.Host().intercept = [failing, locks = 0](const host::EntryCall& call) mutable {
      const bool lock = std::string(call.entry) == "REALLockPictureDescription";
      if (lock && ++locks == failing) throw std::runtime_error("the host gave up");
      return host::Verdict::kProceed;
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0}),
        std::runtime_error);
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty()) << failing;
    EXPECT_TRUE(plugin.Host().Book().Violations().empty()) << failing;
    EXPECT_EQ(support::Difference(kDest, support::ImageOf(*pictures.dest)), "");
  }
}

// Only the source may be read through a private copy.
TEST(DrawPictureFailures, AnOpaqueSourceThatCannotBeLockedIsReadThroughACopy) {
  support::LoadedPlugin plugin({.newPixelFormat = 3});
  const DrawnPictures pictures(plugin.Host(), kDest, kSource);
  pictures.source->refuseLocks = true;
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 1, 0, 1.0, 0});
  EXPECT_TRUE(Flag(report));
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(
      support::Difference(Words(5, {{0xFF010203, 0xFF0000C8}}), support::ImageOf(*pictures.dest)),
      "");
}

// Pixels of another depth are refused and unlocked; those without colours stay locked.
TEST(DrawPictureFailures, PixelsThatAreNotWordsOfColoursAreRefused) {
  struct Row {
    host::PictureSpec spec;
    std::size_t left;
  };
  for (const Row& row :
       {Row{{.bitsPerPixel = 16}, 0}, Row{{.pixelFormat = 0}, 1}, Row{{.pixelFormat = 7}, 1}}) {
    support::LoadedPlugin plugin;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource);
    host::Picture* odd = plugin.Host().NewPicture(row.spec);
    for (const bool asSource : {false, true}) {
      const host::CallReport report =
          plugin.Library().Call("DrawPictureFZVQ", asSource ? pictures.dest : odd,
                                {asSource ? odd : pictures.source, 0, 0, 1.0, 0});
      EXPECT_FALSE(Flag(report));
      EXPECT_EQ(report.leftOver.size(), row.left) << row.spec.pixelFormat;
      EXPECT_TRUE(report.violations.empty());
    }
    EXPECT_EQ(support::Difference(kDest, support::ImageOf(*pictures.dest)), "");
  }
}

}  // namespace
