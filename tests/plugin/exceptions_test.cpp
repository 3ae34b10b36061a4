// Exceptions raised in the host program: class, message, order of the host calls, references.
#include "plugin/exceptions.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "plugin/strings.h"
#include "tests/plugin/string_host.h"

namespace {

using plugin_test::StringHost;
using Lines = std::vector<std::string>;

void Raise(const char* className, const char* message) { RaiseException(className, message, 0, 0); }

TEST(RaiseException, BuildsTheMessageMakesTheObjectRaisesItAndGivesUpObjectThenString) {
  StringHost host;
  Raise("NilObjectException", "source is nil");
  EXPECT_EQ(host.Calls(), (Lines{
                              "REALBuildString(\"source is nil\", 13) = String#1",
                              "REALSetStringEncoding(String#1, 1536)",
                              "PluginNewInstance(\"NilObjectException\") = NilObjectException#2",
                              "REALSetPropValueString(NilObjectException#2, \"Message\", String#1)",
                              "REALSetPropValueInteger(NilObjectException#2, \"ErrorNumber\", 0)",
                              "RuntimeRaiseException(NilObjectException#2)",
                              "REALUnlockObject(NilObjectException#2)",
                              "REALUnlockString(String#1)",
                          }));
  EXPECT_EQ(host.Raised(), Lines{"NilObjectException: source is nil"});
  EXPECT_EQ(host.LeftOver(), Lines{});
}

struct MessageRow {
  const char* name;
  const char* message;
};
const MessageRow kNoMessage[] = {{"null", nullptr}, {"empty", ""}};

TEST(RaiseException, WithoutAMessageStillSetsAndRaises) {
  for (const MessageRow& row : kNoMessage) {
    SCOPED_TRACE(row.name);
    StringHost host;
    Raise("NilObjectException", row.message);
    EXPECT_EQ(host.Calls(), (Lines{
                                "PluginNewInstance(\"NilObjectException\") = NilObjectException#1",
                                "REALSetPropValueString(NilObjectException#1, \"Message\", nil)",
                                "REALSetPropValueInteger(NilObjectException#1, \"ErrorNumber\", 0)",
                                "RuntimeRaiseException(NilObjectException#1)",
                                "REALUnlockObject(NilObjectException#1)",
                            }));
    EXPECT_EQ(host.Raised(), Lines{"NilObjectException: no message"});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(RaiseException, UsesNeitherTheLengthNorTheErrorNumber) {
  struct Row {
    std::size_t length;
    std::int32_t errorNumber;
  };
  const Row rows[] = {{0, 0}, {3, 7}, {1000, -1}, {~std::size_t{0}, INT32_MIN}, {11, INT32_MAX}};
  for (const Row& row : rows) {
    StringHost host;
    RaiseException("RuntimeException", "some text\0more", row.length, row.errorNumber);
    EXPECT_EQ(host.Raised(), Lines{"RuntimeException: some text"}) << row.length;
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(RaiseException, AClassThatTheHostLacksBecomesARuntimeException) {
  StringHost host;
  Raise("NoSuchThingException", "still said");
  EXPECT_EQ(host.Raised(), Lines{"RuntimeException: still said"});
  const Lines calls = host.Calls();
  ASSERT_EQ(calls.size(), 9U);
  EXPECT_EQ(calls[2], "PluginNewInstance(\"NoSuchThingException\") = nil");
  EXPECT_EQ(calls[3], "PluginNewInstance(\"RuntimeException\") = RuntimeException#2");
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(RaiseException, WithoutEitherClassNothingIsRaisedAndTheMessageIsGivenUp) {
  for (const char* message : {"unsaid", static_cast<const char*>(nullptr)}) {
    StringHost host;
    host.runtime.RemoveClass("NilObjectException");
    host.runtime.RemoveClass("RuntimeException");
    Raise("NilObjectException", message);
    Lines expected = {"PluginNewInstance(\"NilObjectException\") = nil",
                      "PluginNewInstance(\"RuntimeException\") = nil"};
    if (message != nullptr) {
      expected.insert(expected.begin(), {"REALBuildString(\"unsaid\", 6) = String#1",
                                         "REALSetStringEncoding(String#1, 1536)"});
      expected.push_back("REALUnlockString(String#1)");
    }
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(host.Raised(), Lines{});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

struct MissingRow {
  const char* entry;
  Lines raised;
};

TEST(RaiseException, DoesWhatItCanWithoutAnyOneEntry) {
  const MissingRow rows[] = {
      {"REALBuildString", {"NilObjectException: no message"}},
      {"REALSetStringEncoding", {"NilObjectException: source is nil"}},
      {"PluginNewInstance", {}},
      {"REALSetPropValueString", {"NilObjectException: no message"}},
      {"REALSetPropValueInteger", {"NilObjectException: source is nil"}},
      {"RuntimeRaiseException", {}},
  };
  for (const MissingRow& row : rows) {
    SCOPED_TRACE(row.entry);
    StringHost host;
    host.runtime.Withhold(row.entry);
    Raise("NilObjectException", "source is nil");
    EXPECT_EQ(host.Raised(), row.raised);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(RaiseException, AMissingRaiseEntryStillReleasesInOrder) {
  StringHost host;
  host.runtime.Withhold("RuntimeRaiseException");
  Raise("RuntimeException", "unsaid");
  const Lines calls = host.Calls();
  ASSERT_EQ(calls.size(), 7U);
  EXPECT_EQ(calls[5], "REALUnlockObject(RuntimeException#2)");
  EXPECT_EQ(calls[6], "REALUnlockString(String#1)");
}

class Thrown {};

TEST(RaiseException, WhatTheHostThrowsAfterTheMessagePassesOutWithEverythingGivenUp) {
  const char* const entries[] = {"PluginNewInstance", "REALSetPropValueString",
                                 "REALSetPropValueInteger", "RuntimeRaiseException"};
  for (const char* entry : entries) {
    SCOPED_TRACE(entry);
    StringHost host;
    host.ThrowFrom(entry, [] { throw Thrown(); });
    EXPECT_THROW(Raise("OutOfBoundsException", "too far"), Thrown);
    EXPECT_EQ(host.Raised(), Lines{});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(RaiseException, AStandardExceptionOfTheRaiseEntryIsNotMapped) {
  StringHost host;
  host.ThrowFrom("RuntimeRaiseException", [] { throw std::runtime_error("raised"); });
  EXPECT_THROW(Raise("OutOfBoundsException", "too far"), std::runtime_error);
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
