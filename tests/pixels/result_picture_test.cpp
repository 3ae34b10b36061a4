// New pictures for results: which sizes and hosts allow one, and what becomes of it on failure.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

const std::string kFindsConstructor =
    "REALLoadObjectMethod(Picture#1, \"Constructor(width as integer, height as integer)\") = "
    "Constructor";

struct Made {
  bool ok;
  Lines calls;  // up to the writer's end
  int width, height, format;
  bool alphaLocked;
};

// Makes a writer for a source with or without an alpha channel and lets it end.
Made MakeWriter(LinkedHost& host, bool alpha, int width, int height) {
  host.KnowKind();
  host.Mark();
  PictureReader reader;
  reader.hasAlpha = alpha;
  PictureWriter writer;
  const bool ok = writer.NewPictureWriter(reader, width, height);
  return {ok, host.Calls(), writer.width, writer.height, writer.pixelFormat, writer.alphaLocked};
}

TEST(NewPictureWriter, MakesAnOpaquePictureWithFiveCalls) {
  LinkedHost host(Desktop());
  host.KnowKind();
  PictureReader reader;
  {
    PictureWriter writer;
    ASSERT_TRUE(writer.NewPictureWriter(reader, 7, 2));
    EXPECT_EQ(host.Calls(), (Lines{"newPicture(7, 2, 32) = Picture#1",
                                   "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 8) = 1",
                                   "REALLockObject(Picture#1)", "REALUnlockObject(Picture#1)"}));
    EXPECT_EQ(writer.width, 7);
    EXPECT_EQ(writer.height, 2);
    EXPECT_TRUE(writer.writable);
    EXPECT_FALSE(writer.mayCopy);
    EXPECT_FALSE(writer.hasAlpha);
    EXPECT_EQ(host.runtime.Book().Objects()[0]->References(), 1);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_FALSE(host.runtime.Book().Objects()[0]->Alive());
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(NewPictureWriter, MakesAnAlphaPictureThroughItsConstructor) {
  for (const double version : {2011.04, 2013.04}) {
    LinkedHost host(Desktop(version));
    const Made made = MakeWriter(host, true, 7, 2);
    EXPECT_TRUE(made.ok);
    EXPECT_EQ(made.calls, (Lines{"PluginNewInstance(\"Picture\") = Picture#1", kFindsConstructor,
                                 "Picture#1.Constructor(7, 2)",
                                 "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = true",
                                 "REALLockPictureDescription(Picture#1, 8) = 1",
                                 "REALLockObject(Picture#1)", "REALUnlockObject(Picture#1)"}));
    EXPECT_EQ(made.width, 7);
    EXPECT_EQ(made.height, 2);
    EXPECT_EQ(made.format, 2);
    EXPECT_TRUE(made.alphaLocked);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(NewPictureWriter, MakesBuffersOnAConsoleHost) {
  for (const bool alpha : {false, true}) {
    LinkedHost host(Console());
    const Made made = MakeWriter(host, alpha, 3, 4);
    EXPECT_TRUE(made.ok);
    EXPECT_EQ(made.format, 8);
    EXPECT_FALSE(made.alphaLocked);
    EXPECT_EQ(made.calls[made.calls.size() - 3], "REALLockPictureDescription(Picture#1, 10) = 1");
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(NewPictureWriter, OpaqueSidesGoFrom1To32767) {
  const struct {
    int width, height;
    bool ok;
  } rows[] = {
      {1, 1, true},          {32767, 1, true},      {1, 32767, true},      {32767, 2, true},
      {0, 1, false},         {1, 0, false},         {-1, 1, false},        {1, -1, false},
      {32768, 1, false},     {1, 32768, false},     {0, 32768, false},     {65536, 65536, false},
      {INT32_MIN, 1, false}, {1, INT32_MIN, false}, {INT32_MAX, 1, false}, {1, INT32_MAX, false},
  };
  for (const auto& row : rows) {
    LinkedHost host(Desktop());
    const Made made = MakeWriter(host, false, row.width, row.height);
    EXPECT_EQ(made.ok, row.ok) << row.width << "x" << row.height;
    if (row.ok) {
      EXPECT_EQ(made.width, row.width);
      EXPECT_EQ(made.height, row.height);
    } else {
      EXPECT_EQ(made.calls, Lines{}) << row.width << "x" << row.height;
    }
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(NewPictureWriter, AlphaSidesHaveNoUpperLimit) {
  const struct {
    int width, height;
    bool ok;
  } rows[] = {
      {1, 1, true},  {32768, 1, true},      {1, 32768, true},      {100000, 3, true},
      {0, 1, false}, {1, 0, false},         {-1, 5, false},        {5, -1, false},
      {0, 0, false}, {INT32_MIN, 1, false}, {1, INT32_MIN, false},
  };
  for (const auto& row : rows) {
    LinkedHost host(Desktop());
    const Made made = MakeWriter(host, true, row.width, row.height);
    EXPECT_EQ(made.ok, row.ok) << row.width << "x" << row.height;
    if (row.ok) {
      EXPECT_EQ(made.width, row.width);
    } else {
      EXPECT_EQ(made.calls, Lines{}) << row.width << "x" << row.height;
    }
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(NewPictureWriter, AlphaPicturesNeedAHostOf201104) {
  for (const double version : {0.0, 2009.0, 2011.03, 2011.0399}) {
    LinkedHost host(Desktop(version));
    for (const int width : {1, 10, 32768}) {
      const Made made = MakeWriter(host, true, width, 1);
      EXPECT_FALSE(made.ok) << version;
      EXPECT_EQ(made.calls, Lines{}) << version;
    }
    EXPECT_TRUE(MakeWriter(host, false, 10, 1).ok) << version;
    EXPECT_EQ(host.LeftOver(), Lines{}) << version;
  }
}

TEST(NewPictureWriter, AnAlphaPictureTooLargeForTheHostIsGivenUp) {
  LinkedHost host(Desktop());
  const Made made = MakeWriter(host, true, 200000, 200000);
  EXPECT_FALSE(made.ok);
  // A picture that could not be constructed has no alpha channel.
  EXPECT_EQ(made.calls,
            (Lines{"PluginNewInstance(\"Picture\") = Picture#1", kFindsConstructor,
                   "Picture#1.Constructor(200000, 200000)",
                   "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                   "REALLockPictureDescription(Picture#1, 8) = 0", "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(NewPictureWriter, FailsWithoutAnInstance) {
  LinkedHost host(Desktop());
  host.runtime.RemoveClass("Picture");
  const Made made = MakeWriter(host, true, 3, 3);
  EXPECT_FALSE(made.ok);
  EXPECT_EQ(made.calls, Lines{"PluginNewInstance(\"Picture\") = nil"});
}

TEST(NewPictureWriter, GivesUpAnInstanceWithoutConstructor) {
  LinkedHost host(Desktop());
  host.runtime.WithholdHostMethod(kConstructorDeclaration);
  const Made made = MakeWriter(host, true, 3, 3);
  EXPECT_FALSE(made.ok);
  EXPECT_EQ(made.calls,
            (Lines{"PluginNewInstance(\"Picture\") = Picture#1",
                   "REALLoadObjectMethod(Picture#1, \"Constructor(width as integer, height as "
                   "integer)\") = nil",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(NewPictureWriter, FailsWhenTheHostMakesNoPicture) {
  LinkedHost host(Desktop());
  host.FailEntry("newPicture");
  const Made made = MakeWriter(host, false, 3, 4);
  EXPECT_FALSE(made.ok);
  EXPECT_EQ(made.calls, Lines{"newPicture(3, 4, 32) = nil"});
}

TEST(NewPictureWriter, GivesUpAPictureThatCannotBeLockedAndNeverCopiesIt) {
  for (const double version : {2011.9, 2013.04}) {
    for (const bool alpha : {false, true}) {
      LinkedHost host(Desktop(version));
      host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
        spec.storage = host::Storage::kHostBuffer;
      };
      const Made made = MakeWriter(host, alpha, 3, 3);
      EXPECT_FALSE(made.ok);
      Lines end = {"REALLockPictureDescription(Picture#1, 8) = 0"};
      if (version < 2012.0) end.push_back("unlockPictureDescription(Picture#1)");
      end.push_back("REALUnlockObject(Picture#1)");
      EXPECT_EQ(Lines(made.calls.end() - static_cast<std::ptrdiff_t>(end.size()), made.calls.end()),
                end);
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(NewPictureWriter, GivesUpAPictureOfTheWrongDepth) {
  LinkedHost host(Desktop());
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) { spec.bitsPerPixel = 16; };
  const Made made = MakeWriter(host, false, 3, 3);
  EXPECT_FALSE(made.ok);
  EXPECT_EQ(Lines(made.calls.end() - 3, made.calls.end()),
            (Lines{"REALLockPictureDescription(Picture#1, 8) = 1",
                   "unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(NewPictureWriter, RefusesANarrowerPictureUntouchedAndAcceptsAllOthers) {
  const struct {
    int wider, higher;
    bool ok;
  } rows[] = {{-1, 0, false}, {-4, 3, false}, {-1, -1, false}, {0, -1, true},
              {0, -4, true},  {0, 2, true},   {1, 0, true},    {3, -2, true}};
  for (const auto& row : rows) {
    for (const bool alpha : {false, true}) {
      for (const host::RuntimeOptions& options : {Desktop(), Console()}) {
        LinkedHost host(options);
        host.runtime.adjustNewPicture = [&](host::PictureSpec& spec) {
          spec.width += row.wider;
          spec.height += row.higher;
          spec.guard = host::Guard::kAfter;
        };
        const Made made = MakeWriter(host, alpha, 5, 5);
        EXPECT_EQ(made.ok, row.ok) << row.wider << " " << row.higher;
        if (row.ok) {
          EXPECT_EQ(made.width, 5 + row.wider);
          EXPECT_EQ(made.height, 5 + row.higher);
        }
        EXPECT_EQ(host.LeftOver(), Lines{});
      }
    }
  }
}

TEST(NewPictureWriter, OfTooFewRowsSendsTheRestToItsRowZero) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
    spec.height = 2;
    spec.guard = host::Guard::kAfter;
  };
  PictureReader reader;
  PictureWriter writer;
  ASSERT_TRUE(writer.NewPictureWriter(reader, 3, 4));
  for (int row = 0; row < 4; ++row) {
    writer.GoToRow(row);
    for (int x = 0; x < 3; ++x) writer.cursor[x] = NumberAt(x, row);
  }
  const auto* made = dynamic_cast<host::Picture*>(host.runtime.Book().Objects()[0].get());
  EXPECT_EQ(made->Word(0, 0), 0x01020600u);
  EXPECT_EQ(made->Word(2, 1), 0x01020402u);
}

}  // namespace
