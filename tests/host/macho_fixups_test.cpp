#include "host/macho_fixups.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/host/macho_builder.h"

namespace host {
namespace {

using macho_test::Bytes;

// Two segments of 64 and 16 bytes, the second one with 8 more that are not in the file.
class Fixups : public testing::Test {
 protected:
  Fixups() {
    content_.resize(80);
    file_.segments.resize(2);
    file_.segments[0].address = 0x1000;
    file_.segments[0].size = 64;
    file_.segments[0].content = {content_.data(), 64, "segment"};
    file_.segments[1].address = 0x2000;
    file_.segments[1].size = 24;
    file_.segments[1].content = {content_.data() + 64, 16, "segment"};
    file_.libraries = {"one", "two"};
  }

  // What the instructions ask for, or the fault that ends them.
  std::string Rebases(const Bytes& instructions) {
    file_.rebase = {instructions.data(), instructions.size(), "rebase instructions"};
    std::ostringstream out;
    out << std::hex;
    return Run(out, [&] {
      ForEachRebase(file_, [&](FixupKind kind, std::uint32_t address) {
        out << address
            << (kind == FixupKind::kPointer    ? " "
                : kind == FixupKind::kAbsolute ? "a "
                                               : "r ");
      });
    });
  }
  std::string Binds(const Bytes& instructions, BindList list = BindList::kAtOnce) {
    ByteView& where = list == BindList::kAtOnce ? file_.bind
                      : list == BindList::kWeak ? file_.weakBind
                                                : file_.lazyBind;
    where = {instructions.data(), instructions.size(), "bind instructions"};
    std::ostringstream out;
    out << std::hex;
    return Run(out, [&] {
      ForEachBind(file_, list, [&](const MachoBind& bind) {
        out << bind.address << "=" << bind.symbol << (bind.weakImport ? "?" : "") << "@" << std::dec
            << bind.library;
        if (bind.addend != 0) out << "+" << bind.addend;
        if (bind.kind != FixupKind::kPointer) out << "/" << static_cast<int>(bind.kind);
        out << std::hex << " ";
      });
    });
  }

 private:
  template <typename Action>
  static std::string Run(std::ostringstream& out, Action action) {
    try {
      action();
    } catch (const FileFault& fault) {
      return fault.what();
    }
    return out.str();
  }
  std::vector<std::uint8_t> content_;
  MachoFile file_;
};

TEST_F(Fixups, EveryRebaseInstructionDoesWhatItSays) {
  const struct {
    Bytes instructions;
    const char* expected;
  } cases[] = {
      {{}, ""},
      {{0x20, 4, 0x51}, "1004 "},
      {{0x20, 4, 0x53}, "1004 1008 100c "},
      {{0x21, 0, 0x60, 2}, "2000 2004 "},
      {{0x20, 0, 0x30, 8, 0x51}, "1008 "},
      {{0x20, 0, 0x43, 0x51}, "100c "},
      {{0x20, 0, 0x70, 8, 0x51}, "1000 100c "},
      {{0x20, 0, 0x80, 3, 4}, "1000 1008 1010 "},
      {{0x12, 0x20, 1, 0x51, 0x13, 0x51, 0x11, 0x51}, "1001a 1005r 1009 "},
      {{0x20, 8, 0x51, 0x30, 0xF4, 0xFF, 0xFF, 0xFF, 0x0F, 0x51}, "1008 1000 "},
      {{0x20, 0, 0x00, 0x51}, ""},
      {{0x20, 60, 0x51}, "103c "},
      {{0x20, 0, 0x60, 16},
       "1000 1004 1008 100c 1010 1014 1018 101c 1020 1024 1028 102c 1030 1034 1038 103c "},
  };
  for (const auto& one : cases) EXPECT_EQ(Rebases(one.instructions), one.expected);
}

TEST_F(Fixups, DamagedRebaseInstructionsAreRefused) {
  const char* const kNowhere = "it has pointers in no segment";
  const struct {
    Bytes instructions;
    const char* fault;
  } cases[] = {
      {{0x51}, kNowhere},
      {{0x22, 0, 0x51}, kNowhere},
      {{0x20, 61, 0x51}, kNowhere},
      {{0x21, 16, 0x51}, kNowhere},
      {{0x20, 60, 0x52}, kNowhere},
      {{0x20, 0, 0x30, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0x51}, kNowhere},
      {{0x20, 0, 0x60, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}, kNowhere},
      {{0x20, 0, 0x80, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0xFC, 0xFF, 0xFF, 0xFF, 0x0F},
       "it has more pointers than room for them"},
      {{0x10}, "it has pointers of an unknown kind"},
      {{0x14}, "it has pointers of an unknown kind"},
      {{0x90}, "it has an unknown rebase instruction"},
      {{0x20}, "its rebase instructions end too early"},
      {{0x20, 0x80}, "its rebase instructions end too early"},
      {{0x30, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F},
       "its rebase instructions hold a number of more than 64 bits"},
  };
  for (const auto& one : cases) EXPECT_EQ(Rebases(one.instructions), one.fault);
}

TEST_F(Fixups, EveryBindInstructionDoesWhatItSays) {
  const struct {
    Bytes instructions;
    const char* expected;
  } cases[] = {
      {{}, ""},
      {{0x11, 0x40, 'a', 0, 0x70, 4, 0x90}, "1004=a@1 "},
      {{0x20, 2, 0x41, 'a', 0, 0x70, 4, 0x90}, "1004=a?@2 "},
      {{0x3E, 0x40, 'a', 0, 0x71, 0, 0x90, 0x30, 0x90}, "2000=a@-2 2004=a@0 "},
      {{0x40, 'a', 0, 0x52, 0x60, 0x7F, 0x70, 0, 0x90}, "1000=a@0+-1/2 "},
      {{0x40, 'a', 0, 0x70, 0, 0x80, 8, 0x90, 0x40, 'b', 'c', 0, 0x90}, "1008=a@0 100c=bc@0 "},
      {{0x40, 'a', 0, 0x70, 0, 0xA0, 4, 0x90}, "1000=a@0 1008=a@0 "},
      {{0x40, 'a', 0, 0x70, 0, 0xB2, 0x90}, "1000=a@0 100c=a@0 "},
      {{0x40, 'a', 0, 0x70, 0, 0xC0, 2, 8, 0x90}, "1000=a@0 100c=a@0 1018=a@0 "},
      {{0x40, 'a', 0, 0x70, 0, 0x00, 0x90}, ""},
  };
  for (const auto& one : cases) EXPECT_EQ(Binds(one.instructions), one.expected);
}

TEST_F(Fixups, EndsWithinLazyBindsOnlySeparateThem) {
  const Bytes lazily = {0x70, 0, 0x40, 'a', 0, 0x90, 0, 0x70, 4, 0x40, 'b', 0, 0x90, 0, 0};
  EXPECT_EQ(Binds(lazily, BindList::kLazy), "1000=a@0 1004=b@0 ");
  EXPECT_EQ(Binds(lazily, BindList::kWeak), "1000=a@0 ");
}

TEST_F(Fixups, DamagedBindInstructionsAreRefused) {
  const struct {
    Bytes instructions;
    const char* fault;
  } cases[] = {
      {{0x13}, "it binds to an unknown library"},
      {{0x20, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}, "it binds to an unknown library"},
      {{0x3C}, "it binds to an unknown library"},
      {{0x70, 0, 0x90}, "it binds to a symbol without a name"},
      {{0x40, 0, 0x70, 0, 0x90}, "it binds to a symbol without a name"},
      {{0x40, 'a', 0, 0x90}, "it has pointers in no segment"},
      {{0x40, 'a', 0, 0x7F, 0, 0x90}, "it has pointers in no segment"},
      {{0x40, 'a', 0, 0x70, 61, 0x90}, "it has pointers in no segment"},
      {{0x40, 'a', 0, 0x70, 0, 0xC0, 0xFF, 0xFF, 0x03, 0}, "it has pointers in no segment"},
      {{0x40, 'a', 0, 0x70, 0, 0xC0, 0xFF, 0xFF, 0x03, 0xFC, 0xFF, 0xFF, 0xFF, 0x0F},
       "it has more pointers than room for them"},
      {{0x54}, "it has pointers of an unknown kind"},
      {{0xD0}, "it has an unknown bind instruction"},
      {{0xF0}, "it has an unknown bind instruction"},
      {{0x40, 'a'}, "its bind instructions end too early"},
      {{0x60, 0x80}, "its bind instructions end too early"},
  };
  for (const auto& one : cases) EXPECT_EQ(Binds(one.instructions), one.fault);
}

}  // namespace
}  // namespace host
