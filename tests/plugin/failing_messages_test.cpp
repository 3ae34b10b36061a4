// Exceptions whose own message cannot be built: what is raised, in which order, and where it ends.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "plugin/exceptions.h"
#include "plugin/strings.h"
#include "tests/plugin/string_host.h"

namespace {

using plugin_test::StringHost;
using Lines = std::vector<std::string>;

constexpr int kAlways = 1000;

void ThrowRange() { throw std::range_error("builder broke"); }

// The builder throws at calls spared + 1 .. spared + times.
struct Row {
  const char* name;
  int times;
  Lines raised;
  int builds;
};

TEST(FailingMessage, IsRaisedInTheOrderMappedThenOriginal) {
  const Row rows[] = {
      {"never", 0, {"NilObjectException: source is nil"}, 1},
      {"once", 1, {"OutOfBoundsException: builder broke", "NilObjectException: no message"}, 2},
      {"twice", 2, {"OutOfBoundsException: no message", "NilObjectException: no message"}, 2},
      {"always",
       kAlways,
       {"OutOfBoundsException: no message", "NilObjectException: no message"},
       2},
  };
  for (const Row& row : rows) {
    for (const char* entry : {"REALBuildString", "REALSetStringEncoding"}) {
      SCOPED_TRACE(std::string(row.name) + ", " + entry);
      StringHost host;
      host.ThrowFrom(entry, ThrowRange, row.times);
      RaiseException("NilObjectException", "source is nil", 0, 0);
      EXPECT_EQ(host.Raised(), row.raised);
      int builds = 0;
      for (const std::string& line : host.Calls()) builds += line.starts_with("REALBuildString(");
      EXPECT_EQ(builds, row.builds);
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(FailingMessage, OfAStringBuiltAloneRaisesOnlyTheMappedException) {
  const Row rows[] = {
      {"once", 1, {"OutOfBoundsException: builder broke"}, 2},
      {"twice", 2, {"OutOfBoundsException: no message"}, 2},
      {"always", kAlways, {"OutOfBoundsException: no message"}, 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    StringHost host;
    host.ThrowFrom("REALBuildString", ThrowRange, row.times);
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    EXPECT_EQ(host.Raised(), row.raised);
    int builds = 0;
    for (const std::string& line : host.Calls()) builds += line.starts_with("REALBuildString(");
    EXPECT_EQ(builds, row.builds);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(FailingMessage, IsMappedByTheFirstExceptionNotTheSecond) {
  StringHost host;
  host.runtime.intercept = [seen = 0](const host::EntryCall& call) mutable {
    if (std::string(call.entry) == "REALBuildString" && ++seen == 1) throw std::bad_alloc();
    if (std::string(call.entry) == "REALBuildString" && seen == 2) throw std::bad_cast();
    return host::Verdict::kProceed;
  };
  RaiseException("NilObjectException", "source is nil", 0, 0);
  EXPECT_EQ(host.Raised(),
            (Lines{"OutOfMemoryException: no message", "NilObjectException: no message"}));
}

TEST(FailingMessage, IsTheMappedOnesWholeCallBeforeTheOriginalIsMade) {
  StringHost host;
  host.ThrowFrom("REALBuildString", ThrowRange);
  RaiseException("NilObjectException", "nil", 0, 0);
  EXPECT_EQ(host.Calls(),
            (Lines{
                "REALBuildString(\"nil\", 3) threw",
                "REALBuildString(\"builder broke\", 13) = String#1",
                "REALSetStringEncoding(String#1, 1536)",
                "PluginNewInstance(\"OutOfBoundsException\") = OutOfBoundsException#2",
                "REALSetPropValueString(OutOfBoundsException#2, \"Message\", String#1)",
                "REALSetPropValueInteger(OutOfBoundsException#2, \"ErrorNumber\", 0)",
                "RuntimeRaiseException(OutOfBoundsException#2)",
                "REALUnlockObject(OutOfBoundsException#2)",
                "REALUnlockString(String#1)",
                "PluginNewInstance(\"NilObjectException\") = NilObjectException#3",
                "REALSetPropValueString(NilObjectException#3, \"Message\", nil)",
                "REALSetPropValueInteger(NilObjectException#3, \"ErrorNumber\", 0)",
                "RuntimeRaiseException(NilObjectException#3)",
                "REALUnlockObject(NilObjectException#3)",
            }));
}

TEST(FailingMessage, DoesNotStopLaterExceptionsFromBeingMapped) {
  for (const int times : {1, 2}) {
    StringHost host;
    host.ThrowFrom("REALBuildString", ThrowRange, times);
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    host.ThrowFrom("REALBuildString", [] { throw std::logic_error("again"); });
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    ASSERT_EQ(host.Raised().size(), 2U);
    EXPECT_EQ(host.Raised()[1], "RuntimeException: again");
  }
}

struct Closed {};

TEST(FailingMessage, APassingExceptionOfTheRaiseEntryLeavesLaterOnesMapped) {
  StringHost host;
  host.runtime.intercept = [](const host::EntryCall& call) {
    if (std::string(call.entry) == "REALBuildString") ThrowRange();
    if (std::string(call.entry) == "RuntimeRaiseException") throw Closed();
    return host::Verdict::kProceed;
  };
  EXPECT_THROW(REALBuildUnicodeString("abc", 3, kEncodingUtf8), Closed);
  EXPECT_THROW(RaiseException("NilObjectException", "nil", 0, 0), Closed);
  EXPECT_EQ(host.LeftOver(), Lines{});
  host.ThrowFrom("REALBuildString", ThrowRange);
  EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
  EXPECT_EQ(host.Raised(), Lines{"OutOfBoundsException: builder broke"});
}

TEST(FailingMessage, OfAClassThatTheHostLacksFallsBackToo) {
  StringHost host;
  host.runtime.RemoveClass("OutOfBoundsException");
  host.ThrowFrom("REALBuildString", ThrowRange);
  RaiseException("NilObjectException", "nil", 0, 0);
  EXPECT_EQ(host.Raised(),
            (Lines{"RuntimeException: builder broke", "NilObjectException: no message"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
