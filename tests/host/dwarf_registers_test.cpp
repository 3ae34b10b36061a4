#include "host/dwarf_registers.h"

#include <gtest/gtest.h>

#include "host/byte_view.h"

namespace host {
namespace {

using Data = std::vector<std::uint8_t>;

struct Exchanged {
  Data bytes;
  std::vector<std::size_t> pointers;
};

Exchanged Exchange(Data bytes) {
  Exchanged result;
  ExchangeStackRegisters(bytes, 0, bytes.size(),
                         [&](std::size_t at) { result.pointers.push_back(at); });
  result.bytes = bytes;
  return result;
}

std::string FaultOf(const Data& bytes) {
  try {
    Exchange(bytes);
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "";
}

TEST(DwarfRegisters, EveryInstructionKeepsItsSizeAndOtherNumbers) {
  const struct {
    Data before, after;
  } cases[] = {
      {{0x00, 0x44, 0x45}, {0x00, 0x44, 0x45}},
      {{0x84, 4, 0x85, 5, 0x83, 4}, {0x85, 4, 0x84, 5, 0x83, 4}},
      {{0xC4, 0xC5, 0xC6}, {0xC5, 0xC4, 0xC6}},
      {{0x02, 4, 0x03, 4, 5, 0x04, 4, 5, 4, 5}, {0x02, 4, 0x03, 4, 5, 0x04, 4, 5, 4, 5}},
      {{0x05, 4, 5}, {0x05, 5, 5}},
      {{0x05, 0x84, 0x00, 5}, {0x05, 0x85, 0x00, 5}},
      {{0x06, 4, 0x07, 5, 0x08, 4}, {0x06, 5, 0x07, 4, 0x08, 5}},
      {{0x09, 4, 5, 0x09, 3, 4}, {0x09, 5, 4, 0x09, 3, 5}},
      {{0x0A, 0x0B}, {0x0A, 0x0B}},
      {{0x0C, 5, 4, 0x0D, 4, 0x0E, 4}, {0x0C, 4, 4, 0x0D, 5, 0x0E, 4}},
      {{0x11, 4, 4, 0x12, 5, 0x7C, 0x13, 4}, {0x11, 5, 4, 0x12, 4, 0x7C, 0x13, 4}},
      {{0x14, 4, 4, 0x15, 5, 4}, {0x14, 5, 4, 0x15, 4, 4}},
      {{0x2E, 0x85, 0x01, 0x2F, 4, 4}, {0x2E, 0x85, 0x01, 0x2F, 5, 4}},
      {{0x0F, 3, 0x75, 4, 0x06, 0x84, 1}, {0x0F, 3, 0x74, 4, 0x06, 0x85, 1}},
      {{0x10, 4, 2, 0x74, 4, 0x44}, {0x10, 5, 2, 0x75, 4, 0x44}},
      {{0x16, 5, 1, 0x54}, {0x16, 4, 1, 0x55}},
  };
  for (const auto& one : cases) EXPECT_EQ(Exchange(one.before).bytes, one.after);
}

TEST(DwarfRegisters, ExpressionsAreReadOperationByOperation) {
  const struct {
    Data before, after;
  } cases[] = {
      {{0x55, 0x54, 0x50}, {0x54, 0x55, 0x50}},
      {{0x74, 0x84, 0x74, 0x70, 5}, {0x75, 0x84, 0x74, 0x70, 5}},
      {{0x90, 4, 0x92, 5, 0x74}, {0x90, 5, 0x92, 4, 0x74}},
      {{0x08, 0x74, 0x09, 0x74, 0x15, 0x74, 0x94, 0x54}, {}},
      {{0x0A, 0x74, 0x75, 0x0B, 0x74, 0x75, 0x28, 0x74, 0x75, 0x2F, 0x74, 0x75}, {}},
      {{0x03, 0x74, 0x75, 0x74, 0x75, 0x0C, 0x54, 0x55, 0x54, 0x55, 0x0D, 0x54, 0x55, 0x54, 0x55},
       {}},
      {{0x0E, 0x54, 0x55, 0x54, 0x55, 0x54, 0x55, 0x54, 0x55}, {}},
      {{0x10, 0xF4, 0x54, 0x11, 0x54, 0x23, 0x54}, {}},
      {{0x06, 0x12, 0x13, 0x14, 0x16, 0x17, 0x19, 0x22, 0x24, 0x27, 0x29, 0x2E, 0x30, 0x4F, 0x96},
       {}},
  };
  for (const auto& one : cases) {
    const auto wrapped = [](const Data& expression) {
      Data bytes = {0x0F, static_cast<std::uint8_t>(expression.size())};
      bytes.insert(bytes.end(), expression.begin(), expression.end());
      bytes.push_back(0x84);
      bytes.push_back(1);
      return bytes;
    };
    Data expected = wrapped(one.after.empty() ? one.before : one.after);
    expected[expected.size() - 2] = 0x85;  // what follows is read as instructions again
    EXPECT_EQ(Exchange(wrapped(one.before)).bytes, expected);
  }
}

TEST(DwarfRegisters, CodeAddressesAreTold) {
  const Exchanged result = Exchange({0x00, 0x01, 4, 5, 4, 5, 0x84, 1});
  EXPECT_EQ(result.pointers, std::vector<std::size_t>{2});
  EXPECT_EQ(result.bytes, (Data{0x00, 0x01, 4, 5, 4, 5, 0x85, 1}));
}

TEST(DwarfRegisters, OnlyTheInstructionsMeantAreChanged) {
  Data bytes = {0x84, 1, 0x84, 1, 0x84, 1};
  ExchangeStackRegisters(bytes, 2, 4, [](std::size_t) {});
  EXPECT_EQ(bytes, (Data{0x84, 1, 0x85, 1, 0x84, 1}));
}

TEST(DwarfRegisters, UnknownAndDamagedInstructionsAreRefused) {
  const struct {
    Data bytes;
    const char* fault;
  } cases[] = {
      {{0x17}, "its call frame instructions hold unknown instruction 23"},
      {{0x2D}, "its call frame instructions hold unknown instruction 45"},
      {{0x3F}, "its call frame instructions hold unknown instruction 63"},
      {{0x0F, 1, 0x93}, "its call frame instructions hold unknown operation 147"},
      {{0x0F, 1, 0x18}, "its call frame instructions hold unknown operation 24"},
      {{0x0F, 2, 0x91, 0}, "its call frame instructions hold unknown operation 145"},
      {{0x89, 1}, "its call frame instructions name register 9"},
      {{0x07, 0x80, 0x01}, "its call frame instructions name register 128"},
      {{0x0F, 1, 0x59}, "its call frame instructions name register 9"},
      {{0x0B}, "its call frame instructions restore a frame that was not remembered"},
      {{0x0A, 0x0B, 0x0B}, "its call frame instructions restore a frame that was not remembered"},
      {{0x84}, "its call frame instructions end too early"},
      {{0x01, 1, 2, 3}, "its call frame instructions lie outside of it"},
      {{0x04, 1, 2, 3}, "its call frame instructions lie outside of it"},
      {{0x0F, 3, 0x96}, "its call frame instructions lie outside of it"},
      {{0x0F, 1, 0x74, 0x00}, "its call frame instructions end too early"},
      {{0x05, 0x84}, "its call frame instructions end too early"},
  };
  for (const auto& one : cases) EXPECT_EQ(FaultOf(one.bytes), one.fault);
}

}  // namespace
}  // namespace host
