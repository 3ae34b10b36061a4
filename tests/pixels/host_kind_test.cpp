// How the editor learns which kind of application it runs in, and what it then asks for.
#include <gtest/gtest.h>

#include <set>

#include "pixels/picture_editor.h"
#include "plugin/application_kind.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

std::string AsksAlpha(bool alpha) {
  return std::string("REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = ") +
         (alpha ? "true" : "false");
}

Lines Probe(const std::string& desktop, const std::string& web, const std::string& console) {
  return {"pluginObjectType(\"Application\") = " + desktop,
          "pluginObjectType(\"WebApplication\") = " + web,
          "pluginObjectType(\"ConsoleApplication\") = " + console};
}

Lines Joined(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

host::RuntimeOptions Of(host::ApplicationKind kind) {
  host::RuntimeOptions options;
  options.kind = kind;
  return options;
}

TEST(HostKind, ADesktopHostIsAskedForAllThreeClassesOnce) {
  LinkedHost host(Of(host::ApplicationKind::kDesktop));
  host::Picture* picture = host.Make(Context(2, 2));
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(host.Calls(), Joined(Probe("Application", "nil", "nil"),
                                 {AsksAlpha(false), "REALLockPictureDescription(Picture#1, 8) = 1",
                                  "REALLockObject(Picture#1)"}));
  EXPECT_EQ(IsDesktop, 1);
  EXPECT_EQ(IsConsole, 0);
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(
      host.Calls(),
      (Lines{"unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)", AsksAlpha(false),
             "REALLockPictureDescription(Picture#1, 8) = 1", "REALLockObject(Picture#1)"}));
}

TEST(HostKind, WebAndConsoleHostsGoStraightToTheBuffer) {
  const struct {
    host::ApplicationKind kind;
    Lines probe;
  } rows[] = {
      {host::ApplicationKind::kWeb, Probe("nil", "WebApplication", "nil")},
      {host::ApplicationKind::kConsole, Probe("nil", "nil", "ConsoleApplication")},
  };
  for (const auto& row : rows) {
    LinkedHost host(Of(row.kind));
    host::Picture* picture = host.Make(Buffer(2, 2));
    {
      PictureReader reader;
      ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
      EXPECT_EQ(host.Calls(), Joined(row.probe, {AsksAlpha(false),
                                                 "REALLockPictureDescription(Picture#1, 10) = 1",
                                                 "REALLockObject(Picture#1)"}));
    }
    EXPECT_EQ(IsDesktop, 0);
    EXPECT_EQ(IsConsole, 1);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(HostKind, AContextLockTellsWhereNoClassDoes) {
  LinkedHost host(Unknown());
  host::Picture* picture = host.Make(Context(2, 2));
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(host.Calls(), Joined(Probe("nil", "nil", "nil"),
                                 {AsksAlpha(false), "REALLockPictureDescription(Picture#1, 8) = 1",
                                  "REALLockObject(Picture#1)"}));
  EXPECT_EQ(IsDesktop, 1);
  EXPECT_EQ(IsConsole, 0);
  reader.GetPictureEditor(HandleOf(picture), 1, 0);
  EXPECT_EQ(host.Calls()[2], AsksAlpha(false));
}

TEST(HostKind, ABufferLockTellsWhereNoClassDoes) {
  for (const bool alpha : {false, true}) {
    LinkedHost host(Unknown());
    host::PictureSpec spec = Buffer(2, 2);
    spec.hasAlphaChannel = alpha;
    host::Picture* picture = host.Make(spec);
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    EXPECT_EQ(
        host.Calls(),
        Joined(Probe("nil", "nil", "nil"),
               {AsksAlpha(alpha), "REALLockPictureDescription(Picture#1, 8) = 0",
                "REALLockPictureDescription(Picture#1, 10) = 1", "REALLockObject(Picture#1)"}));
    EXPECT_EQ(IsDesktop, 0);
    EXPECT_EQ(IsConsole, 1);
    EXPECT_FALSE(writer.alphaLocked);
    writer.GetPictureEditor(HandleOf(picture), 0, 1);
    EXPECT_EQ(
        host.Calls(),
        (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
               "REALUnlockObject(Picture#1)", AsksAlpha(alpha),
               "REALLockPictureDescription(Picture#1, 10) = 1", "REALLockObject(Picture#1)"}));
  }
}

TEST(HostKind, IsAskedForAgainWhileNothingTellsIt) {
  LinkedHost host(Unknown());
  host::Picture* picture = host.Make(Context(2, 2));
  picture->refuseLocks = true;
  PictureWriter writer;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    EXPECT_EQ(host.Calls(),
              Joined(Probe("nil", "nil", "nil"),
                     {AsksAlpha(false), "REALLockPictureDescription(Picture#1, 8) = 0",
                      "REALLockPictureDescription(Picture#1, 10) = 0"}));
    EXPECT_EQ(IsDesktop, 0);
    EXPECT_EQ(IsConsole, 0);
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(HostKind, ALockThatIsThenRefusedTellsItAllTheSame) {
  const struct {
    host::PictureSpec spec;
    int desktop, console;
  } rows[] = {{Context(2, 2), 1, 0}, {AlphaContext(2, 2), 1, 0}, {Buffer(2, 2), 0, 1}};
  for (const auto& row : rows) {
    LinkedHost host(Unknown());
    host::Picture* picture = host.Make(row.spec);
    picture->distort = [](host::Picture::LockedView view) { view.description.handle = nullptr; };
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    EXPECT_EQ(IsDesktop, row.desktop);
    EXPECT_EQ(IsConsole, row.console);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(HostKind, ADesktopHostIsNeverAskedForABuffer) {
  for (const bool alpha : {false, true}) {
    LinkedHost host(Of(host::ApplicationKind::kDesktop));
    host.KnowKind();
    host::PictureSpec spec = Buffer(2, 2);
    spec.hasAlphaChannel = alpha;
    host::Picture* picture = host.Make(spec);
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    EXPECT_EQ(host.Calls(),
              (Lines{AsksAlpha(alpha), "REALLockPictureDescription(Picture#1, 8) = 0"}));
    EXPECT_EQ(IsConsole, 0);
  }
}

TEST(HostKind, WithBothKindsKnownNothingIsLocked) {
  LinkedHost host(Of(host::ApplicationKind::kDesktop));
  host::Picture* picture = host.Make(AlphaContext(2, 2));
  IsDesktop = 1;
  IsConsole = 1;
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
  EXPECT_EQ(host.Calls(), Lines{AsksAlpha(true)});
}

TEST(HostKind, NilIsRefusedBeforeTheKindIsAskedFor) {
  LinkedHost host(Of(host::ApplicationKind::kDesktop));
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(nullptr, 1, 0), 0);
  EXPECT_EQ(host.CallsAndLookUps(), Lines{});
  EXPECT_EQ(IsDesktop, 0);
}

// ---- Hosts that have several application classes at once --------------------------------------

std::set<std::string> gClasses;
int gClassQuestions = 0;

REALclassRef ObjectType(const char* className) {
  ++gClassQuestions;
  return gClasses.contains(className) ? reinterpret_cast<REALclassRef>(&gClasses) : nullptr;
}

TEST(HostKind, TheDesktopClassOutranksTheOthers) {
  const struct {
    std::set<std::string> classes;
    int desktop, console;
  } rows[] = {
      {{"Application", "WebApplication", "ConsoleApplication"}, 1, 0},
      {{"Application", "ConsoleApplication"}, 1, 0},
      {{"WebApplication", "ConsoleApplication"}, 0, 1},
      {{"WebApplication"}, 0, 1},
      {{"ConsoleApplication"}, 0, 1},
      {{}, 0, 0},
  };
  for (const auto& row : rows) {
    LinkedHost host(Unknown());
    host::Picture* picture = host.Make(Context(2, 2));
    picture->refuseLocks = true;
    gClasses = row.classes;
    gClassQuestions = 0;
    host.ReplaceEntry("pluginObjectType", reinterpret_cast<REALroutine>(&ObjectType));
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    EXPECT_EQ(gClassQuestions, 3);
    EXPECT_EQ(IsDesktop, row.desktop);
    EXPECT_EQ(IsConsole, row.console);
  }
}

}  // namespace
