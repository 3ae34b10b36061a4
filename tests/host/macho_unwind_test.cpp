#include "host/macho_unwind.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/host/macho_builder.h"

namespace host {
namespace {

using macho_test::Bytes;

constexpr std::uint32_t kAt = 0x5000;  // where the tables are

// A common part and one function's, with everything that may be among them.
struct Tables {
  unsigned version = 1, returnAddress = 8;
  std::string augmentation = "zPLR";
  unsigned personality = 0x9B, handlers = 0x10, code = 0x10;
  std::uint32_t personalityAt = 0x100, handlersAt = 0x200, first = 0x300;
  Bytes instructions = {0x0C, 5, 4};
  Bytes own = {0x84, 2};

  // Offsets of the three addresses.
  static constexpr std::size_t kPersonality = 4 + 4 + 1 + 5 + 1 + 1 + 1 + 1 + 1;
  static constexpr std::size_t kFirst = 4 + 4 + 1 + 5 + 1 + 1 + 1 + 1 + 7 + 3 + 4 + 4;
  static constexpr std::size_t kHandlers = kFirst + 8 + 1;

  Bytes Build() const {
    Bytes common;
    common.Word(0).Byte(version).Text(augmentation).Uleb(1).Sleb(-4).Byte(returnAddress);
    common.Uleb(7).Byte(personality).Word(personalityAt).Byte(handlers).Byte(code);
    common.Add(instructions);
    Bytes out;
    out.Word(static_cast<std::uint32_t>(common.size())).Add(common);
    Bytes function;
    function.Word(static_cast<std::uint32_t>(out.size() + 4)).Word(first).Word(0x40);
    function.Uleb(4).Word(handlersAt).Add(own);
    return out.Word(static_cast<std::uint32_t>(function.size())).Add(function);
  }
};

struct Seen {
  std::vector<FrameAddress> asked;
  Bytes translated;
  std::string fault;
};

Seen Translate(const Bytes& tables, bool allowed = true) {
  Seen seen;
  try {
    const std::vector<std::uint8_t> translated =
        TranslateFrames(ByteView(tables.data(), tables.size(), "exception tables"), kAt,
                        [&](const FrameAddress& a) {
                          seen.asked.push_back(a);
                          return allowed;
                        });
    // Where a distance in the translation leads to, written in its place.
    seen.translated.Add(translated);
    for (const std::size_t at : {Tables::kPersonality, Tables::kFirst, Tables::kHandlers}) {
      if (at + 4 > translated.size()) continue;
      const auto from =
          static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(translated.data() + at));
      seen.translated.SetWord(at, seen.translated.WordAt(at) + from);
    }
  } catch (const FileFault& fault) {
    seen.fault = fault.what();
  }
  return seen;
}

TEST(MachoUnwind, RegistersAreExchangedAndAddressesKept) {
  const Tables tables;
  const Seen seen = Translate(tables.Build());
  ASSERT_EQ(seen.fault, "");
  Bytes expected = tables.Build().Word(0);
  expected[Tables::kFirst - 4 - 4 - 2] = 4;  // the frame's register
  expected[Tables::kHandlers + 4] = 0x85;    // the saved one
  expected.SetWord(Tables::kPersonality, kAt + Tables::kPersonality + 0x100);
  expected.SetWord(Tables::kFirst, kAt + Tables::kFirst + 0x300);
  expected.SetWord(Tables::kHandlers, kAt + Tables::kHandlers + 0x200);
  EXPECT_EQ(seen.translated, expected);
}

TEST(MachoUnwind, EveryAddressIsAskedFor) {
  const Seen seen = Translate(Tables().Build());
  ASSERT_EQ(seen.asked.size(), 3u);
  EXPECT_EQ(seen.asked[0].target, FrameTarget::kPersonality);
  EXPECT_TRUE(seen.asked[0].indirect);
  EXPECT_EQ(seen.asked[0].address, kAt + Tables::kPersonality + 0x100);
  EXPECT_EQ(seen.asked[1].target, FrameTarget::kCode);
  EXPECT_EQ(seen.asked[1].address, kAt + Tables::kFirst + 0x300);
  EXPECT_EQ(seen.asked[1].size, 0x40u);
  EXPECT_EQ(seen.asked[2].target, FrameTarget::kHandlers);
  EXPECT_FALSE(seen.asked[2].indirect);
  EXPECT_EQ(seen.asked[2].address, kAt + Tables::kHandlers + 0x200);
  EXPECT_EQ(Translate(Tables().Build(), false).fault,
            "its exception tables point out of the library");
}

TEST(MachoUnwind, AFunctionMayHaveNoHandlers) {
  Tables tables;
  tables.handlersAt = 0;
  const Seen seen = Translate(tables.Build());
  EXPECT_EQ(seen.fault, "");
  EXPECT_EQ(seen.asked.size(), 2u);
}

TEST(MachoUnwind, TablesOfNoFunctionAreNone) {
  EXPECT_TRUE(Translate({}).translated.empty());
  Bytes commonOnly = Tables().Build();
  commonOnly.resize(4 + commonOnly.WordAt(0));
  EXPECT_TRUE(Translate(commonOnly).translated.empty());
  EXPECT_EQ(Translate(commonOnly).fault, "");
}

TEST(MachoUnwind, WhatFollowsAnEndIsNotRead) {
  Bytes tables = Tables().Build().Word(0).Word(0xFFFFFFFF);
  EXPECT_EQ(Translate(tables).fault, "");
}

TEST(MachoUnwind, UnusableAndDamagedTablesAreRefused) {
  const struct {
    const char* fault;
    std::function<void(Tables&)> change;
  } cases[] = {
      {"its exception tables are of version 2", [](Tables& t) { t.version = 2; }},
      {"its exception tables are of another processor", [](Tables& t) { t.returnAddress = 16; }},
      {"its exception tables are of an unknown form", [](Tables& t) { t.augmentation = "xPLR"; }},
      {"its exception tables are of an unknown form", [](Tables& t) { t.augmentation = "zPLX"; }},
      {"its exception tables hold addresses of form 59", [](Tables& t) { t.personality = 0x3B; }},
      {"its exception tables hold addresses of form 28", [](Tables& t) { t.handlers = 0x1C; }},
      {"its exception tables hold addresses of form 18", [](Tables& t) { t.code = 0x12; }},
      {"its exception tables hold the places of functions' addresses",
       [](Tables& t) { t.code = 0x90; }},
      {"its exception tables name no personality", [](Tables& t) { t.personalityAt = 0; }},
      {"its exception tables hold no function", [](Tables& t) { t.first = 0; }},
      {"its call frame instructions hold unknown instruction 23",
       [](Tables& t) {
         t.instructions = {0x17, 0, 0};
       }},
      {"its call frame instructions end too early", [](Tables& t) { t.own = {0x84}; }},
  };
  for (const auto& one : cases) {
    Tables tables;
    one.change(tables);
    EXPECT_EQ(Translate(tables.Build()).fault, one.fault);
  }
}

TEST(MachoUnwind, EntriesKeepToTheirRoom) {
  const Bytes whole = Tables().Build();
  const std::size_t second = 4 + whole.WordAt(0);
  const struct {
    std::size_t offset;
    std::uint32_t word;
    const char* fault;
  } cases[] = {
      {0, 0xFFFFFFFF, "its exception tables lie outside of it"},
      {0, 0x7FFFFFFF, "its exception tables lie outside of it"},
      {second, whole.WordAt(second) + 1, "its exception tables end too early"},
      {second, 8, "its exception tables end too early"},
      {second + 4, static_cast<std::uint32_t>(second),
       "its exception tables do not belong together"},
      {second + 4, 0xFFFFFFF0, "its exception tables do not belong together"},
  };
  for (const auto& one : cases) {
    Bytes tables = whole;
    tables.SetWord(one.offset, one.word);
    EXPECT_EQ(Translate(tables).fault, one.fault) << one.offset;
  }
  for (std::size_t size = 1; size < whole.size(); ++size) {
    if (size == second) continue;  // a common part of no function
    Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_NE(Translate(cut).fault, "") << size;
  }
}

}  // namespace
}  // namespace host
