// Host strings from the plug-in's text: every encoding, on both sides of each host version.
#include "plugin/strings.h"

#include <gtest/gtest.h>

#include "plugin/host_state.h"
#include "tests/plugin/string_host.h"

namespace {

using plugin_test::StringHost;
using Lines = std::vector<std::string>;

// Codes that no row of the table names are built like ASCII.
struct PlainRow {
  const char* name;
  std::string bytes;
  std::uint32_t encoding;
  std::uint32_t marked;
};

const PlainRow kPlain[] = {
    {"ASCII", "abc", kEncodingAscii, 1536},
    {"ASCII with a high bit", "a\x80", kEncodingAscii, 1536},
    {"UTF-8", "abc", kEncodingUtf8, 134217984},
    {"UTF-8 beyond ASCII", "\xC3\xA4", kEncodingUtf8, 134217984},
    {"7-bit Mac Roman", "abc\x7F", kEncodingMacRoman, 1536},
    {"7-bit Mac Roman with a zero", std::string("a\0c", 3), kEncodingMacRoman, 1536},
    {"8-bit Mac Roman", "abc\x80", kEncodingMacRoman, 0},
    {"8-bit Mac Roman at the start",
     "\xFF"
     "bc",
     kEncodingMacRoman, 0},
    {"8-bit Mac Roman behind a zero", std::string("a\0\x80", 3), kEncodingMacRoman, 0},
    {"7-bit Windows Latin 1", "abc", kEncodingWindowsLatin1, 1536},
    {"8-bit Windows Latin 1",
     "a\xE4"
     "c",
     kEncodingWindowsLatin1, 1280},
    {"7-bit unknown", "abc", kEncodingUnknown, 1536},
    {"8-bit unknown", "ab\xE4", kEncodingUnknown, 65535},
    {"another code", "abc", 0x0201, 513},
    {"another code with a high bit", "ab\xE4", 0x0A01, 2561},
    {"the largest code", "abc", 0xFFFFFFFF, 4294967295},
    {"one byte", "\x01", kEncodingUtf8, 134217984},
};

TEST(BuildUnicodeString, BuildsAndMarksTextOfOneByteEncodingsOnEveryHost) {
  for (const double version : {0.0, 2011.9, 2012.0, 2012.9, 2013.0, 2013.04}) {
    for (const PlainRow& row : kPlain) {
      SCOPED_TRACE(testing::Message() << row.name << ", " << version);
      StringHost host(version);
      const auto length = static_cast<std::int64_t>(row.bytes.size());
      REALstring text = REALBuildUnicodeString(row.bytes.data(), length, row.encoding);
      EXPECT_EQ(host.Calls(),
                (Lines{"REALBuildString(\"" + row.bytes + "\", " + std::to_string(length) +
                           ") = String#1",
                       "REALSetStringEncoding(String#1, " + std::to_string(row.marked) + ")"}));
      EXPECT_EQ(host.Taken(text), row.bytes + ", " + std::to_string(row.marked));
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(BuildUnicodeString, ReadsNothingBehindTheLength) {
  StringHost host;
  const char bytes[] = "abc\x80";
  EXPECT_EQ(host.Taken(REALBuildUnicodeString(bytes, 3, kEncodingMacRoman)), "abc, 1536");
}

TEST(BuildUnicodeString, AStringThatTheHostDoesNotMakeIsNotMarked) {
  for (const bool withheld : {false, true}) {
    StringHost host;
    if (withheld) host.runtime.Withhold("REALBuildString");
    host.runtime.intercept = [](const host::EntryCall&) { return host::Verdict::kFail; };
    EXPECT_EQ(REALBuildUnicodeString("abc", 3, kEncodingUtf8), nullptr);
    EXPECT_EQ(host.Calls(), withheld ? Lines{} : Lines{"REALBuildString(\"abc\", 3) = nil"});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

struct LengthRow {
  const char* name;
  bool isNull;
  std::int64_t length;
};

const LengthRow kRefused[] = {
    {"nothing", false, 0},
    {"negative", false, -1},
    {"far negative", false, INT64_MIN},
    {"negative with a positive low half", false, -0x100000000 + 3},
    {"one too many", false, 0x80000000},
    {"a length that wraps to 3", false, 0x100000003},
    {"the largest", false, INT64_MAX},
    {"null data", true, 3},
    {"null data and nothing", true, 0},
};

TEST(BuildUnicodeString, RefusesNullDataAndLengthsOutsideTheLimitsWithoutAHostCall) {
  const std::uint32_t encodings[] = {
      kEncodingAscii,    kEncodingUtf8,          kEncodingUtf16,   kEncodingUtf32,
      kEncodingMacRoman, kEncodingWindowsLatin1, kEncodingUnknown, 513};
  for (const double version : {2011.9, 2012.9, 2013.04}) {
    for (const std::uint32_t encoding : encodings) {
      for (const LengthRow& row : kRefused) {
        SCOPED_TRACE(testing::Message() << row.name << ", " << version << ", " << encoding);
        StringHost host(version);
        EXPECT_EQ(REALBuildUnicodeString(row.isNull ? nullptr : "abcd", row.length, encoding),
                  nullptr);
        EXPECT_EQ(host.runtime.Calls().Lines(), Lines{});
      }
    }
  }
}

// What the host is handed when no more than the length is looked at.
std::int32_t gLength = 0;

TEST(BuildUnicodeString, TheLargestLengthReachesTheHost) {
  StringHost host;
  static REALBuildStringEntry* const take = [](const char*, std::int32_t length) -> REALstring {
    gLength = length;
    return nullptr;
  };
  gResolver = [](const char*) { return reinterpret_cast<REALroutine>(take); };
  EXPECT_EQ(REALBuildUnicodeString("abc", 0x7FFFFFFF, kEncodingUtf8), nullptr);
  EXPECT_EQ(gLength, 0x7FFFFFFF);
}

const std::string kUtf16("a\0\xE4\0", 4);  // "aä"

std::string Unlocks(const std::string& name) { return "REALUnlockString(" + name + ")"; }

Lines Utf16Calls(bool old) {
  const std::string built = "(\"" + kUtf16 + "\", 4";
  Lines calls = {"REALBuildStringWithEncoding" + built + ", 256) = String#1"};
  if (old) {
    calls = {"REALBuildString" + built + ") = String#1", "REALSetStringEncoding(String#1, 256)"};
  }
  calls.push_back("REALConvertString(String#1, 134217984) = String#2");
  calls.push_back(Unlocks("String#1"));
  return calls;
}

struct VersionRow {
  double version;
  bool old;
};
const VersionRow kVersions[] = {{0.0, true},     {2011.9, true},  {2011.999, true}, {2012.0, false},
                                {2012.9, false}, {2013.0, false}, {3000.0, false}};

TEST(BuildUnicodeString, ConvertsUtf16ToUtf8ByTheRoutinesOfTheHostsVersion) {
  for (const VersionRow& row : kVersions) {
    for (const bool alone : {false, true}) {
      SCOPED_TRACE(testing::Message() << row.version << (alone ? ", alone" : ""));
      StringHost host(row.version);
      REALstring text = alone ? REALBuildUnicodeStringUTF16(kUtf16.data(), 4)
                              : REALBuildUnicodeString(kUtf16.data(), 4, kEncodingUtf16);
      EXPECT_EQ(host.Calls(), Utf16Calls(row.old));
      EXPECT_EQ(host.Taken(text), "a\xC3\xA4, 134217984");
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(BuildUnicodeStringUTF16, AStringThatANewHostDoesNotMakeIsConvertedAllTheSame) {
  StringHost host(2012.0);
  host.runtime.Withhold("REALBuildStringWithEncoding");
  EXPECT_EQ(REALBuildUnicodeStringUTF16(u"ab", 4), nullptr);
  EXPECT_EQ(host.Calls(), Lines{"REALConvertString(nil, 134217984) = nil"});
}

TEST(BuildUnicodeStringUTF16, AStringThatAnOldHostDoesNotMakeIsNotConverted) {
  StringHost host(2011.9);
  host.runtime.Withhold("REALBuildString");
  EXPECT_EQ(REALBuildUnicodeStringUTF16(u"ab", 4), nullptr);
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(BuildUnicodeStringUTF16, AStringThatCannotBeConvertedIsGivenUp) {
  for (const double version : {2011.9, 2012.0}) {
    for (const bool withheld : {false, true}) {
      StringHost host(version);
      if (withheld) host.runtime.Withhold("REALConvertString");
      host.runtime.intercept = [](const host::EntryCall& call) {
        const bool fails = std::string(call.entry) == "REALConvertString";
        return fails ? host::Verdict::kFail : host::Verdict::kProceed;
      };
      EXPECT_EQ(REALBuildUnicodeStringUTF16(kUtf16.data(), 4), nullptr);
      EXPECT_EQ(host.Calls().back(), Unlocks("String#1"));
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

}  // namespace
