#include "host/macho_exports.h"

#include <gtest/gtest.h>

#include "tests/host/macho_builder.h"

namespace host {
namespace {

using macho_test::Bytes;

std::optional<std::uint32_t> Find(const Bytes& tree, const char* name) {
  return MachoExports(ByteView(tree.data(), tree.size(), "exported symbols")).Find(name);
}

std::string FaultOf(const Bytes& tree) {
  try {
    Find(tree, "_a");
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "";
}

// "_": node 5; there "a" ends, offset 0x10, and "ab" ends behind it, offset 0x290.
const Bytes kTree = {
    0, 1, '_',  0,    5,           // 0
    0, 1, 'a',  0,    10,          // 5
    2, 0, 0x10, 1,    'b', 0, 17,  // 10
    3, 0, 0x90, 0x05, 0,           // 17
};

TEST(MachoExports, NamesAreFoundPartByPart) {
  EXPECT_EQ(Find(kTree, "_a"), 0x10u);
  EXPECT_EQ(Find(kTree, "_ab"), 0x290u);
  for (const char* name : {"", "_", "a", "_b", "_abc", "_ac"}) {
    EXPECT_EQ(Find(kTree, name), std::nullopt) << name;
  }
  EXPECT_EQ(Find({}, "_a"), std::nullopt);
}

TEST(MachoExports, OnlyPlacesInTheLibraryItselfCount) {
  for (const std::uint8_t flags : {1, 2, 8, 16}) {
    Bytes tree = kTree;
    tree[11] = flags;
    EXPECT_EQ(Find(tree, "_a"), std::nullopt) << int{flags};
  }
  Bytes weak = kTree;
  weak[11] = 4;
  EXPECT_EQ(Find(weak, "_a"), 0x10u);
}

TEST(MachoExports, DamageIsNoticedWhereverItIs) {
  const struct {
    std::size_t offset;
    std::uint8_t byte;
    const char* fault;
  } cases[] = {
      {4, 0, "its exported symbols lead in circles"},
      {16, 5, "its exported symbols lead in circles"},
      {16, 10, "its exported symbols lead in circles"},
      {4, 22, "its exported symbols lead out of them"},
      {2, 0, "its exported symbols go on without a letter"},
      {17, 4, "its exported symbols end too early"},
      {17, 9, "its exported symbols lie outside of it"},
      {17, 1, "its exported symbols end too early"},
      {21, 1, "its exported symbols end too early"},
      {16, 0x90, "its exported symbols lead out of them"},
  };
  for (const auto& one : cases) {
    Bytes tree = kTree;
    tree[one.offset] = one.byte;
    EXPECT_EQ(FaultOf(tree), one.fault) << one.offset;
  }
  for (std::size_t size = 1; size < kTree.size(); ++size) {
    EXPECT_NE(FaultOf(Bytes(kTree.begin(), kTree.begin() + static_cast<std::ptrdiff_t>(size))), "")
        << size;
  }
}

}  // namespace
}  // namespace host
