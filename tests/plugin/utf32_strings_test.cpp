// UTF-32 text: given to new hosts as it is, turned into UTF-16 for old ones, and the block that
// takes.
#include <gtest/gtest.h>

#include "plugin/strings.h"
#include "tests/plugin/string_host.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::StringHost;
using support::AllocationWatch;
using Lines = std::vector<std::string>;
using Sizes = std::vector<std::size_t>;

std::string BytesOf(const std::vector<std::uint32_t>& codePoints) {
  std::string bytes;
  for (const std::uint32_t c : codePoints) {
    for (int k = 0; k < 4; ++k) bytes += static_cast<char>(c >> 8 * k & 0xFF);
  }
  return bytes;
}

std::string BytesOf16(const std::vector<std::uint32_t>& units) {
  std::string bytes;
  for (const std::uint32_t unit : units) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

REALstring Build(const std::string& bytes) {
  return REALBuildUnicodeString(bytes.data(), static_cast<std::int64_t>(bytes.size()),
                                kEncodingUtf32);
}

// The call that hands UTF-16 to the host.
std::string Handed(bool old, const std::string& units) {
  const std::string shown = "(\"" + units + "\", " + std::to_string(units.size());
  return old ? "REALBuildString" + shown + ") = String#1"
             : "REALBuildStringWithEncoding" + shown + ", 256) = String#1";
}

TEST(Utf32String, IsGivenToNewHostsAsItIs) {
  for (const double version : {2013.0, 2013.04, 3000.0}) {
    for (const std::size_t length : {4U, 6U, 1U, 2000U}) {
      StringHost host(version);
      std::string bytes = BytesOf({'a'});
      bytes.resize(length, 'x');
      const AllocationWatch watch;
      REALstring text = Build(bytes);
      EXPECT_EQ(watch.Calls(), 0);
      EXPECT_EQ(host.Calls(), Lines{"REALBuildStringWithEncoding(\"" + bytes + "\", " +
                                    std::to_string(length) + ", 201326848) = String#1"});
      EXPECT_EQ(host.Taken(text), bytes + ", 201326848");
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(Utf32String, ThatANewHostDoesNotMakeIsNull) {
  StringHost host(2013.0);
  host.runtime.Withhold("REALBuildStringWithEncoding");
  EXPECT_EQ(Build(BytesOf({'a'})), nullptr);
  EXPECT_EQ(host.Calls(), Lines{});
}

struct ConversionRow {
  const char* name;
  std::vector<std::uint32_t> codePoints;
  std::vector<std::uint32_t> units;
};

const ConversionRow kConversions[] = {
    {"letters", {'a', 0xE4, 0x20AC}, {'a', 0xE4, 0x20AC}},
    {"a zero", {'a', 0, 'b'}, {'a', 0, 'b'}},
    {"around the surrogates", {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000}, {0xD7FF, 0xE000}},
    {"a surrogate between letters", {'a', 0xD83D, 'b'}, {'a', 'b'}},
    {"the last of 16 bits", {0xFFFF}, {0xFFFF}},
    {"the first pair", {0x10000}, {0xD800, 0xDC00}},
    {"a pair", {0x1F600}, {0xD83D, 0xDE00}},
    {"low halves", {0x103FF, 0x10400}, {0xD800, 0xDFFF, 0xD801, 0xDC00}},
    {"the last pair", {0x10FFFF}, {0xDBFF, 0xDFFF}},
    {"past the last", {0x110000, 0x7FFFFFFF, 0x80000041, 0xFFFFFFFF}, {65533, 65533, 65533, 65533}},
    {"everything dropped", {0xD800, 0xDFFF}, {}},
};

TEST(Utf32String, BecomesUtf16ForOldHosts) {
  for (const double version : {0.0, 2011.9, 2012.0, 2012.9, 2012.999}) {
    const bool old = version < 2012.0;
    for (const ConversionRow& row : kConversions) {
      SCOPED_TRACE(testing::Message() << row.name << ", " << version);
      StringHost host(version);
      const AllocationWatch watch;
      REALstring text = Build(BytesOf(row.codePoints));
      EXPECT_EQ(watch.Calls(), 0);
      ASSERT_NE(text, nullptr);
      const Lines calls = host.Calls();
      ASSERT_EQ(calls.size(), old ? 4U : 3U);
      EXPECT_EQ(calls[0], Handed(old, BytesOf16(row.units)));
      if (old) {
        EXPECT_EQ(calls[1], "REALSetStringEncoding(String#1, 256)");
      }
      EXPECT_EQ(calls[calls.size() - 2], "REALConvertString(String#1, 134217984) = String#2");
      EXPECT_EQ(calls.back(), "REALUnlockString(String#1)");
      host.Taken(text);
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(Utf32String, EndsAsUtf8) {
  StringHost host(2012.9);
  EXPECT_EQ(host.Taken(Build(BytesOf({'a', 0xE4, 0x1F600, 0x110000}))),
            "a\xC3\xA4\xF0\x9F\x98\x80\xEF\xBF\xBD, 134217984");
}

TEST(Utf32String, BytesAfterTheLastWholeCodePointAreLeftOut) {
  for (const std::size_t extra : {1U, 2U, 3U}) {
    for (const std::size_t codePoints : {0U, 1U, 199U, 200U, 300U}) {
      SCOPED_TRACE(testing::Message() << codePoints << " and " << extra);
      StringHost host(2012.9);
      std::string bytes = BytesOf(std::vector<std::uint32_t>(codePoints, 'z'));
      bytes.append(extra, '\x01');
      REALstring text = Build(bytes);
      EXPECT_EQ(host.Calls().at(0),
                Handed(false, BytesOf16(std::vector<std::uint32_t>(codePoints, 'z'))));
      host.Taken(text);
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(Utf32String, NeedsNoAlignment) {
  StringHost host(2012.9);
  const std::string bytes = "x" + BytesOf({'a', 0x1F600});
  EXPECT_EQ(host.Taken(REALBuildUnicodeString(bytes.data() + 1, 8, kEncodingUtf32)),
            "a\xF0\x9F\x98\x80, 134217984");
}

// From 800 bytes on: two units for each code point and a terminating zero, two bytes each.
struct BlockRow {
  std::size_t length;
  Sizes blocks;
};

const BlockRow kBlocks[] = {{796, {}},    {797, {}},    {798, {}},    {799, {}},    {800, {802}},
                            {801, {802}}, {802, {802}}, {803, {802}}, {804, {806}}, {4000, {4002}}};

TEST(Utf32String, TakesOneZeroedBlockFromEightHundredBytesOn) {
  for (const double version : {2011.9, 2012.9}) {
    for (const BlockRow& row : kBlocks) {
      SCOPED_TRACE(testing::Message() << row.length << ", " << version);
      StringHost host(version);
      // All pairs: every unit of the buffer is used.
      std::string bytes = BytesOf(std::vector<std::uint32_t>(row.length / 4, 0x10FFFF));
      bytes.resize(row.length);
      const AllocationWatch watch;
      REALstring text = Build(bytes);
      EXPECT_EQ(watch.Sizes(), row.blocks);
      const host::Text* made = host.TextOf(text);
      ASSERT_NE(made, nullptr);
      EXPECT_EQ(made->Bytes().size(), row.length / 4 * 4);  // four bytes of UTF-8 for each
      host.Taken(text);
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(Utf32String, IsNullWithoutMemoryAndNothingIsAskedOfTheHost) {
  for (const double version : {2011.9, 2012.9}) {
    StringHost host(version);
    const std::string bytes(800, 'a');
    const AllocationWatch watch(1);
    EXPECT_EQ(Build(bytes), nullptr);
    EXPECT_EQ(watch.Calls(), 1);
    EXPECT_EQ(host.runtime.Calls().Lines(), Lines{});
    EXPECT_EQ(host.Raised(), Lines{});
  }
}

}  // namespace
