#include <gtest/gtest.h>

#include <cstring>

#include "host/graphics.h"
#include "tests/host/entry_access.h"

namespace host {
namespace {

class PictureEntries : public testing::Test {
 protected:
  explicit PictureEntries(double version = 2013.04,
                          ApplicationKind kind = ApplicationKind::kDesktop)
      : runtime_([&] {
          RuntimeOptions options;
          options.version = version;
          options.kind = kind;
          return options;
        }()) {}
  bool Lock(Picture* picture, std::int32_t type) {
    return EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(
               Handle(picture), &description_, type) != 0;
  }
  void Unlock(Picture* picture) {
    EntryOf<UnlockPictureDescriptionEntry>("unlockPictureDescription")(Handle(picture));
  }
  Runtime runtime_;
  REALpictureDescription description_{};
  NewPictureEntry* newPicture_ = EntryOf<NewPictureEntry>("newPicture");
};

class OldHostPictureEntries : public PictureEntries {
 protected:
  OldHostPictureEntries() : PictureEntries(2011.04) {}
};

TEST_F(PictureEntries, NewPictureMakesWhatTheOptionsSay) {
  auto* picture = ObjectOf<Picture>(newPicture_(4, 3, 32));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->Width(), 4);
  EXPECT_EQ(picture->Height(), 3);
  EXPECT_EQ(picture->PixelFormat(), 6);
  EXPECT_EQ(picture->References(), 1);
  EXPECT_FALSE(picture->HasAlphaChannel());
}

TEST_F(PictureEntries, NewPictureIsNilForWhatCannotBe) {
  EXPECT_EQ(newPicture_(0, 3, 32), nullptr);
  EXPECT_EQ(newPicture_(4, -1, 32), nullptr);
  EXPECT_EQ(newPicture_(4, 3, 16), nullptr);
  EXPECT_EQ(newPicture_(32767, 32767, 32), nullptr) << "no memory for it";
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PictureEntries, AdjustmentsReachNewPictures) {
  runtime_.adjustNewPicture = [](PictureSpec& spec) {
    spec.height -= 1;
    spec.pixelFormat = 5;
  };
  EXPECT_EQ(ObjectOf<Picture>(newPicture_(4, 3, 32))->Height(), 2);
  EXPECT_EQ(ObjectOf<Picture>(newPicture_(4, 3, 32))->PixelFormat(), 5);
  EXPECT_EQ(newPicture_(4, 1, 32), nullptr) << "adjusted to nothing";
}

TEST_F(PictureEntries, LocksSucceedForTheFittingTypeAndAreCounted) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_TRUE(Lock(picture, 8));
  EXPECT_TRUE(Lock(picture, 8));
  EXPECT_EQ(runtime_.Book().DescriptionLocks(picture), 2);
  EXPECT_FALSE(Lock(picture, 10));
  EXPECT_EQ(runtime_.Book().DescriptionLocks(picture), 2);
  Unlock(picture);
  Unlock(picture);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PictureEntries, SuccessOfALockIsNotOne) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_GT(EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(
                Handle(picture), &description_, 8),
            1);
}

TEST_F(PictureEntries, AFailedLockLeavesNoiseButNoOwnBuffer) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_FALSE(Lock(picture, 10));
  EXPECT_NE(description_.type, 0);
  EXPECT_NE(description_.handle, nullptr);
  EXPECT_EQ(description_.ownBuffer, nullptr);
  EXPECT_NE(description_.moreHostWords[56], 0u);
}

TEST_F(PictureEntries, OnANewHostAnUnlockTooManyIsAViolation) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_FALSE(Lock(picture, 10));
  Unlock(picture);
  EXPECT_TRUE(LastViolationSays(runtime_, "which was not locked"));
}

TEST_F(OldHostPictureEntries, AFailedLockOwesExactlyOneUnlock) {
  Picture* picture = runtime_.NewPicture({});
  const auto before = runtime_.Book().Take();
  EXPECT_FALSE(Lock(picture, 10));
  EXPECT_EQ(runtime_.Book().Differences(before, nullptr).size(), 1u) << "told when it is missing";
  Unlock(picture);
  EXPECT_TRUE(runtime_.Book().Differences(before, nullptr).empty());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  Unlock(picture);
  EXPECT_EQ(runtime_.Book().Violations().size(), 1u);
}

TEST(PictureEntriesOfBothAges, HalfMadeLocksEndWithVersion2012) {
  for (const double version : {2011.9999, 2012.0}) {
    RuntimeOptions options;
    options.version = version;
    Runtime runtime(options);
    Picture* picture = runtime.NewPicture({});
    REALpictureDescription description{};
    EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(Handle(picture),
                                                                           &description, 10);
    EXPECT_EQ(runtime.Book().DescriptionLocks(picture), version < 2012.0 ? 1 : 0) << version;
  }
}

TEST_F(OldHostPictureEntries, AnInterceptedLockOwesItsUnlockToo) {
  Picture* picture = runtime_.NewPicture({});
  runtime_.intercept = [](const EntryCall& call) {
    return call.number == 1 ? Verdict::kFail : Verdict::kProceed;
  };
  EXPECT_FALSE(Lock(picture, 8));
  EXPECT_EQ(runtime_.Book().DescriptionLocks(picture), 1);
  Unlock(picture);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PictureEntries, AHostWhoseVersionIsHiddenCountsAsOld) {
  runtime_.Withhold("REALGetRBVersion");
  Runtime::Resolve("REALGetRBVersion");
  Picture* picture = runtime_.NewPicture({});
  EXPECT_FALSE(Lock(picture, 10));
  EXPECT_EQ(runtime_.Book().DescriptionLocks(picture), 1);
}

TEST_F(PictureEntries, ALockWithoutARecordIsAViolation) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_EQ(EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(Handle(picture),
                                                                                   nullptr, 8),
            0);
  EXPECT_TRUE(LastViolationSays(runtime_, "no record"));
}

TEST_F(PictureEntries, GraphicsAreNewObjectsThatHoldNothing) {
  Picture* picture = runtime_.NewPicture({});
  auto* graphics = ObjectOf<Graphics>(
      EntryOf<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(Handle(picture)));
  ASSERT_NE(graphics, nullptr);
  EXPECT_EQ(graphics->References(), 1);
  EXPECT_EQ(graphics->Target(), picture);
  EXPECT_EQ(picture->References(), 1);
}

TEST_F(PictureEntries, MasksAreGivenWithOneMoreReference) {
  const auto getMask = EntryOf<REALGetPictureMaskEntry>("REALGetPictureMask");
  Picture* picture = runtime_.NewPicture({});
  EXPECT_EQ(getMask(Handle(picture), 0), nullptr);
  Picture* mask = runtime_.NewPicture({});
  runtime_.SetMask(picture, mask);
  EXPECT_EQ(getMask(Handle(picture), 0), Handle(mask));
  EXPECT_EQ(getMask(Handle(picture), 1), Handle(mask));
  EXPECT_EQ(mask->References(), 3);
}

TEST_F(PictureEntries, AMadeMaskIsBlackAndBelongsToThePicture) {
  const auto getMask = EntryOf<REALGetPictureMaskEntry>("REALGetPictureMask");
  PictureSpec spec;
  spec.width = 3;
  spec.height = 2;
  Picture* picture = runtime_.NewPicture(spec);
  auto* mask = ObjectOf<Picture>(getMask(Handle(picture), 1));
  ASSERT_NE(mask, nullptr);
  EXPECT_EQ(mask->Width(), 3);
  EXPECT_EQ(mask->Height(), 2);
  EXPECT_EQ(mask->Get(2, 1), (Rgba{0, 0, 0, 255}));
  EXPECT_FALSE(mask->HasAlphaChannel());
  EXPECT_EQ(picture->Mask(), mask);
  EXPECT_EQ(mask->References(), 2);
  EntryOf<REALUnlockObjectEntry>("REALUnlockObject")(Handle(mask));
  runtime_.Release(picture);
  EXPECT_FALSE(mask->Alive());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PictureEntries, CachesAreCleared) {
  Picture* picture = runtime_.NewPicture({});
  EntryOf<REALPictureClearCacheEntry>("REALPictureClearCache")(Handle(picture));
  EXPECT_EQ(picture->CacheClears(), 1);
}

TEST_F(PictureEntries, APictureIsBuiltFromABuffersWords) {
  const auto build = EntryOf<REALBuildPictureFromBufferEntry>("REALBuildPictureFromBuffer");
  std::uint32_t words[2][3] = {{1, 2, 99}, {3, 4, 99}};
  const auto* picture = ObjectOf<Picture>(build(2, 2, 1, words, 12));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->Word(1, 0), 2u);
  EXPECT_EQ(picture->Word(0, 1), 3u);
  EXPECT_EQ(picture->Word(1, 1), 4u);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  EXPECT_EQ(build(2, 2, 0, words, 12), nullptr);
  EXPECT_EQ(build(2, 2, 1, nullptr, 12), nullptr);
  EXPECT_EQ(build(2, 2, 1, words, 4), nullptr);
  EXPECT_EQ(build(0, 2, 1, words, 12), nullptr);
  EXPECT_EQ(runtime_.Book().Violations().size(), 4u);
}

TEST(PictureEntriesOnOtherKinds, ConsoleAndWebPicturesAreHostBuffers) {
  for (const auto kind : {ApplicationKind::kConsole, ApplicationKind::kWeb}) {
    RuntimeOptions options;
    options.kind = kind;
    Runtime runtime(options);
    const REALpicture handle = EntryOf<NewPictureEntry>("newPicture")(4, 3, 32);
    EXPECT_EQ(ObjectOf<Picture>(handle)->GetStorage(), Storage::kHostBuffer);
    const auto mask = EntryOf<REALGetPictureMaskEntry>("REALGetPictureMask")(handle, 1);
    EXPECT_EQ(ObjectOf<Picture>(mask)->GetStorage(), Storage::kHostBuffer);
  }
}

}  // namespace
}  // namespace host
