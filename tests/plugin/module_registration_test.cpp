// Modules made from class-extension records: which entries they hold, and what ends registration.
#include "plugin/module_registration.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "plugin/host_state.h"
#include "tests/plugin/fake_host.h"
#include "tests/plugin/leftovers.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::DeliberateLeftovers;
using plugin_test::FakeHandle;
using plugin_test::FakeHost;
using plugin_test::WordsOf;
using support::AllocationWatch;
using Lines = std::vector<std::string>;

constexpr std::size_t kWord = sizeof(std::uintptr_t);

REALmoduleDefinition* gRegistered = nullptr;

void KeepModule(REALmoduleDefinition* module) {
  gRegistered = module;
  FakeHost::Current().Note("module");
}

// What the host was handed, given back here because the tests register often.
void FreeModule() {
  for (std::uintptr_t i = 0; i < gRegistered->methodCount; ++i) {
    std::free(const_cast<char*>(gRegistered->methods[i].declaration));
  }
  std::free(gRegistered->methods);
  std::free(const_cast<char*>(gRegistered->name));
  std::free(gRegistered);
  gRegistered = nullptr;
}

const REALroutine kGet = FakeHandle<REALroutine>(1);
const REALroutine kSet = FakeHandle<REALroutine>(2);

class ModuleRegistrationTest : public testing::Test {
 protected:
  ModuleRegistrationTest() {
    host_.Offer("PluginRegisterModule", KeepModule);
    CurrentREALControlVersion = 12;
    gpartname = "Part";
    record_.className = "Class";
  }
  ~ModuleRegistrationTest() override {
    if (gRegistered != nullptr) FreeModule();
  }

  void Register(std::vector<REALmethodDefinition> methods) {
    methods_ = std::move(methods);
    record_.methods = methods_.data();
    record_.methodCount = methods_.size();
    RegisterModule(record_);
  }

  FakeHost host_;
  REALclassDefinition record_ = {};
  std::vector<REALmethodDefinition> methods_;
};

TEST_F(ModuleRegistrationTest, FillsFourWordsOfTheRecordAndLeavesTheRest0) {
  Register({{kGet, nullptr, "F() as T", 4, {0, 0}}});
  EXPECT_EQ(host_.Lines(), (Lines{"resolve(PluginRegisterModule)", "module"}));
  const auto words = WordsOf(*gRegistered);
  ASSERT_EQ(words.size(), 24u);
  EXPECT_EQ(words[0], 12u);
  EXPECT_STREQ(gRegistered->name, "ClassPartExtensionZVQ");
  EXPECT_NE(words[2], 0u);
  EXPECT_EQ(words[3], 1u);
  for (std::size_t i = 4; i < 24; ++i) EXPECT_EQ(words[i], 0u) << i;
}

struct EntryCase {
  REALroutine routine;
  const char* declaration;
  std::uintptr_t flags, extra0, extra1;
};

TEST_F(ModuleRegistrationTest, MakesSettersBeforeGettersAndNothingForEntriesWithNeither) {
  Register({
      {kGet, nullptr, "Get(a as integer) as T", 4, {11, 12}},
      {nullptr, kSet, "Set(a as integer) as T", 8, {21, 22}},
      {nullptr, nullptr, "Neither(a as integer) as T", 4, {31, 32}},
      {kGet, kSet, "Both as T", 0, {41, 42}},
      {kSet, kGet, "Bare", 0xFFFFFFFF, {51, 52}},
  });
  const EntryCase expected[] = {
      {kGet, "Get(extends ref as Class, a as integer) as T", 20, 11, 12},
      {kSet, "Set(extends ref as Class, a as integer, assigns value as T)", 24, 21, 22},
      {kSet, "Both(extends ref as Class, assigns value as T)", 16, 41, 42},
      {kGet, "Both(extends ref as Class) as T", 16, 41, 42},
      {kGet, "Bare(extends ref as Class, assigns value)", 0xFFFFFFFF, 51, 52},
      {kSet, "Bare(extends ref as Class)", 0xFFFFFFFF, 51, 52},
  };
  ASSERT_NE(gRegistered, nullptr);
  ASSERT_EQ(gRegistered->methodCount, 6u);
  for (std::size_t i = 0; i < 6; ++i) {
    const REALmethodDefinition& entry = gRegistered->methods[i];
    EXPECT_EQ(entry.implementation, expected[i].routine) << i;
    EXPECT_EQ(entry.setter, nullptr) << i;
    EXPECT_STREQ(entry.declaration, expected[i].declaration);
    EXPECT_EQ(entry.flags, expected[i].flags) << i;
    EXPECT_EQ(entry.extra[0], expected[i].extra0) << i;
    EXPECT_EQ(entry.extra[1], expected[i].extra1) << i;
  }
}

TEST_F(ModuleRegistrationTest, LeavesTheClassRecordAsItWas) {
  const std::vector<REALmethodDefinition> methods = {{kGet, kSet, "F as T", 4, {1, 2}}};
  Register(methods);
  EXPECT_EQ(WordsOf(methods_[0]), WordsOf(methods[0]));
}

struct NameCase {
  std::size_t classLength;
  std::size_t kept;
  const char* tail;
};

// "Part" and "ExtensionZVQ" are 16 bytes.
TEST_F(ModuleRegistrationTest, CutsTheModuleNameAt99Bytes) {
  const NameCase cases[] = {
      {82, 82, "PartExtensionZVQ"},  // 98
      {83, 83, "PartExtensionZVQ"},  // 99
      {84, 84, "PartExtensionZV"},   // 100
      {85, 85, "PartExtensionZ"},    // 101
      {95, 95, "Part"},
      {98, 98, "P"},
      {99, 99, ""},
      {100, 99, ""},
      {500, 99, ""},
  };
  for (const NameCase& row : cases) {
    const std::string className(row.classLength, 'c');
    record_.className = className.c_str();
    Register({{kGet, nullptr, "F", 0, {0, 0}}});
    ASSERT_NE(gRegistered, nullptr);
    EXPECT_EQ(gRegistered->name, std::string(row.kept, 'c') + row.tail);
    FreeModule();
  }
}

TEST_F(ModuleRegistrationTest, CopiesEveryTextThatItHandsOver) {
  Register({{kGet, nullptr, "F", 0, {0, 0}}});
  EXPECT_NE(gRegistered->name, record_.className);
  EXPECT_NE(gRegistered->methods[0].declaration, methods_[0].declaration);
}

TEST_F(ModuleRegistrationTest, RegistersNothingWithoutMethods) {
  const AllocationWatch watch;
  Register({});
  EXPECT_EQ(host_.Lines(), Lines{});
  EXPECT_EQ(watch.Calls(), 0);
}

TEST_F(ModuleRegistrationTest, AListWithoutACountIsNoList) {
  REALmethodDefinition method = {kGet, nullptr, "F", 0, {0, 0}};
  record_.methods = &method;
  RegisterModule(record_);
  EXPECT_EQ(host_.Lines(), Lines{});
}

TEST_F(ModuleRegistrationTest, RegistersNothingWhenNoMethodHasARoutine) {
  const AllocationWatch watch;
  Register({{nullptr, nullptr, "F", 0, {0, 0}}, {nullptr, nullptr, "G", 0, {0, 0}}});
  EXPECT_EQ(host_.Lines(), Lines{});
  EXPECT_EQ(watch.Sizes(), std::vector<std::size_t>{24 * kWord});
}

TEST_F(ModuleRegistrationTest, ASetterWhoseDeclarationHasNoPlaceForTheValueEndsRegistration) {
  const DeliberateLeftovers leftovers;
  const std::string bare(2000, 'n');
  Register({{kGet, nullptr, "F", 0, {0, 0}}, {kGet, kSet, bare.c_str(), 0, {0, 0}}});
  EXPECT_EQ(host_.Lines(), Lines{});
}

TEST_F(ModuleRegistrationTest, AVeryLongGetterIsCutAndRegistered) {
  const std::string bare(2000, 'n');
  Register({{kGet, nullptr, bare.c_str(), 0, {0, 0}}});
  ASSERT_NE(gRegistered, nullptr);
  EXPECT_EQ(gRegistered->methods[0].declaration, std::string(999, 'n'));
}

TEST_F(ModuleRegistrationTest, AVeryLongSetterIsCutBeforeItsParenthesisAndTakesTheValueAtABlank) {
  const std::string longSetter = "F(" + std::string(2000, 'a') + ") as T";
  Register({{nullptr, kSet, longSetter.c_str(), 0, {0, 0}}});
  ASSERT_NE(gRegistered, nullptr);
  const std::string expected = "F(extends(assigns value ref as Class, " + std::string(960, 'a');
  ASSERT_EQ(expected.size(), 998u);
  EXPECT_EQ(gRegistered->methods[0].declaration, expected);
}

TEST_F(ModuleRegistrationTest, AHostWithoutModulesGetsNone) {
  const DeliberateLeftovers leftovers;
  host_.Withdraw("PluginRegisterModule");
  Register({{kGet, nullptr, "F", 0, {0, 0}}});
  EXPECT_EQ(host_.Lines(), Lines{"resolve(PluginRegisterModule)"});
}

TEST_F(ModuleRegistrationTest, AllocatesTheRecordThenItsArrayThenTheTexts) {
  const AllocationWatch watch;
  Register({{kGet, nullptr, "F", 0, {0, 0}}, {kGet, kSet, "G as T", 0, {0, 0}}});
  const std::vector<std::size_t> sizes = watch.Sizes();
  ASSERT_EQ(sizes.size(), 7u);
  EXPECT_EQ(sizes[0], 24 * kWord);
  EXPECT_EQ(sizes[1], 3 * 6 * kWord);
  EXPECT_EQ(sizes[2], sizeof "F(extends ref as Class)");
  EXPECT_EQ(sizes[3], sizeof "G(extends ref as Class) as T");
  EXPECT_EQ(sizes[4], sizeof "G(extends ref as Class, assigns value as T)");
  EXPECT_EQ(sizes[5], sizeof "G(extends ref as Class) as T");
  EXPECT_EQ(sizes[6], sizeof "ClassPartExtensionZVQ");
}

TEST_F(ModuleRegistrationTest, AFailedAllocationEndsRegistrationAtOnce) {
  for (int failing = 1; failing <= 7; ++failing) {
    const DeliberateLeftovers leftovers;
    const AllocationWatch watch(failing);
    Register({{kGet, nullptr, "F", 0, {0, 0}}, {kGet, kSet, "G as T", 0, {0, 0}}});
    EXPECT_EQ(watch.Calls(), failing);
    EXPECT_EQ(host_.Lines(), Lines{}) << failing;
  }
}

}  // namespace
