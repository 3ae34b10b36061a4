// Flag words of any class-extension record, shortened properties, and what the host receives.
#include "plugin/class_registration.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "plugin/host_state.h"
#include "tests/plugin/fake_host.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::FakeHost;
using plugin_test::Show;
using plugin_test::WordsOf;
using Lines = std::vector<std::string>;

struct FlagCase {
  std::uintptr_t flags;
  double hostVersion;
  std::uintptr_t expected;
};

const FlagCase kFlagCases[] = {
    {0x40000, 2010.029, 4},
    {0x40000, 2010.028, 0},
    {0x40000, 2010.0289999, 0},
    {0x40000, 2013.04, 4},
    {0x40000, 3000.0, 4},
    {0x40000, 0.0, 0},
    {0x80000, 2010.029, 8},
    {0x80000, 2010.028, 0},
    {0xC0000, 2010.029, 12},
    {0xC0000, 2010.028, 0},
    {0, 2013.04, 0},
    {0, 2009.0, 0},
    {0x12345, 2013.04, 0x12345},
    {0x12345, 2009.0, 0x12345},
    {0xFFF3FFFF, 2013.04, 0xFFF3FFFF},
    {0x40010, 2013.04, 0x14},
    {0x40008, 2013.04, 0xC},
    {0x80004, 2013.04, 0xC},
    {0x40004, 2013.04, 4},
    {0x40004, 2009.0, 4},
    {0xFFFFFFF3, 2013.04, 0xFFF3FFFF},
    {0xFFFFFFF3, 2010.028, 0xFFF3FFF3},
    {0xFFF7FFF0, 2011.0, 0xFFF3FFF4},
    {0xFFFBFFF0, 2011.0, 0xFFF3FFF8},
};

TEST(RewriteFlags, MovesBits18And19To2And3OnNewerHostsAndDropsThemOnOlderOnes) {
  for (const FlagCase& row : kFlagCases) {
    REALclassDefinition record = {};
    record.flags = row.flags;
    RewriteFlags(record, row.hostVersion);
    EXPECT_EQ(record.flags, row.expected) << std::hex << row.flags << ' ' << row.hostVersion;
  }
}

// Every list has two entries more than its count, which must stay as they are.
struct FilledRecord {
  explicit FilledRecord(std::uintptr_t flags) {
    for (auto& method : methods) method.flags = flags;
    for (auto& method : sharedMethods) method.flags = flags;
    for (auto& property : properties) property.flags = flags;
    for (auto& property : sharedProperties) property.flags = flags;
    record.flags = flags;
    record.methods = methods;
    record.methodCount = 3;
    record.sharedMethods = sharedMethods;
    record.sharedMethodCount = 2;
    record.properties = properties;
    record.propertyCount = 1;
    record.sharedProperties = sharedProperties;
    record.sharedPropertyCount = 2;
    record.fourWordEntries = fourWordEntries;
    record.fourWordCount = 1;
    record.fiveWordEntries = fiveWordEntries;
    record.fiveWordCount = 1;
  }
  REALmethodDefinition methods[5] = {};
  REALmethodDefinition sharedMethods[4] = {};
  REALproperty properties[3] = {};
  REALproperty sharedProperties[4] = {};
  std::uintptr_t fourWordEntries[4] = {0xC0000, 0xC0000, 0xC0000, 0xC0000};
  std::uintptr_t fiveWordEntries[5] = {0xC0000, 0xC0000, 0xC0000, 0xC0000, 0xC0000};
  REALclassDefinition record = {};
};

template <typename Entry, std::size_t size>
std::vector<std::uintptr_t> FlagsOf(const Entry (&entries)[size]) {
  std::vector<std::uintptr_t> flags;
  for (const Entry& entry : entries) flags.push_back(entry.flags);
  return flags;
}

using Words = std::vector<std::uintptr_t>;

TEST(RewriteFlags, ReachesEveryEntryOfTheFourListsThatHaveFlagsAndNothingElse) {
  FilledRecord filled(0xC0001);
  RewriteFlags(filled.record, 2012.0);
  EXPECT_EQ(filled.record.flags, 0xDu);
  EXPECT_EQ(FlagsOf(filled.methods), (Words{0xD, 0xD, 0xD, 0xC0001, 0xC0001}));
  EXPECT_EQ(FlagsOf(filled.sharedMethods), (Words{0xD, 0xD, 0xC0001, 0xC0001}));
  EXPECT_EQ(FlagsOf(filled.properties), (Words{0xD, 0xC0001, 0xC0001}));
  EXPECT_EQ(FlagsOf(filled.sharedProperties), (Words{0xD, 0xD, 0xC0001, 0xC0001}));
  for (const std::uintptr_t word : filled.fourWordEntries) EXPECT_EQ(word, 0xC0000u);
  for (const std::uintptr_t word : filled.fiveWordEntries) EXPECT_EQ(word, 0xC0000u);
}

TEST(RewriteFlags, TouchesNoOtherWordOfAnEntry) {
  REALproperty property = {};
  std::uintptr_t all[12];
  for (std::uintptr_t i = 0; i < 12; ++i) all[i] = 0xC0000 + i;
  std::memcpy(&property, all, sizeof property);
  REALmethodDefinition method = {};
  std::memcpy(&method, all, sizeof method);
  REALclassDefinition record = {};
  record.properties = &property;
  record.propertyCount = 1;
  record.methods = &method;
  record.methodCount = 1;
  RewriteFlags(record, 2013.0);
  all[3] = 15;  // 0xC0003 becomes 12 | 3
  const auto propertyWords = WordsOf(property);
  const auto methodWords = WordsOf(method);
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(propertyWords[i], all[i]) << i;
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(methodWords[i], all[i]) << i;
}

TEST(RewriteFlags, LeavesListsWithACountOf0Alone) {
  FilledRecord filled(0xC0000);
  filled.record.methodCount = 0;
  filled.record.sharedMethodCount = 0;
  filled.record.propertyCount = 0;
  filled.record.sharedPropertyCount = 0;
  RewriteFlags(filled.record, 2012.0);
  EXPECT_EQ(filled.record.flags, 12u);
  EXPECT_EQ(FlagsOf(filled.methods), Words(5, 0xC0000));
  EXPECT_EQ(FlagsOf(filled.sharedMethods), Words(4, 0xC0000));
  EXPECT_EQ(FlagsOf(filled.properties), Words(3, 0xC0000));
  EXPECT_EQ(FlagsOf(filled.sharedProperties), Words(4, 0xC0000));
}

TEST(RewriteFlags, PassesOverMissingPropertyListsThatHaveACount) {
  FilledRecord filled(0x40000);
  filled.record.properties = nullptr;
  filled.record.sharedProperties = nullptr;
  RewriteFlags(filled.record, 2012.0);
  EXPECT_EQ(FlagsOf(filled.methods), (Words{4, 4, 4, 0x40000, 0x40000}));
  EXPECT_EQ(filled.record.properties, nullptr);
  EXPECT_EQ(filled.record.propertyCount, 1u);
}

TEST(FixProperties, KeepsTheFirstTenWordsOfEachProperty) {
  REALproperty properties[3];
  std::uintptr_t word = 100;
  for (REALproperty& property : properties) {
    std::uintptr_t words[12];
    for (std::uintptr_t& one : words) one = word++;
    std::memcpy(&property, words, sizeof property);
  }
  const support::AllocationWatch watch;
  OldProperty* fixed = FixProperties(properties, 2);
  ASSERT_NE(fixed, nullptr);
  EXPECT_EQ(watch.Sizes(), std::vector<std::size_t>{20 * sizeof(void*)});
  for (std::uintptr_t i = 0; i < 10; ++i) {
    EXPECT_EQ(fixed[0].words[i], 100 + i);
    EXPECT_EQ(fixed[1].words[i], 112 + i);
  }
  std::free(fixed);
}

TEST(FixProperties, AnswersNullForNoListAndNoPropertiesWithoutAllocating) {
  REALproperty properties[1] = {};
  const support::AllocationWatch watch;
  EXPECT_EQ(FixProperties(nullptr, 3), nullptr);
  EXPECT_EQ(FixProperties(properties, 0), nullptr);
  EXPECT_EQ(FixProperties(nullptr, 0), nullptr);
  EXPECT_EQ(watch.Calls(), 0);
}

TEST(FixProperties, AnswersNullWhenThereIsNoMemory) {
  const REALproperty properties[1] = {};
  const support::AllocationWatch watch(1);
  EXPECT_EQ(FixProperties(properties, 1), nullptr);
}

void NoteRecord(REALclassDefinition* definition) {
  FakeHost::Current().Note(Show(static_cast<void*>(definition), definition->version));
}

TEST(RegisterClassExtension, HandsOverTheRecordItselfWithTheAnnouncedVersion) {
  FakeHost host;
  host.Offer("PluginRegisterClassExtension", NoteRecord);
  REALclassDefinition record = {};
  record.version = 13;
  CurrentREALControlVersion = 10;
  RegisterClassExtension(record);
  EXPECT_EQ(host.Lines(), (Lines{"resolve(PluginRegisterClassExtension)",
                                 Show(static_cast<void*>(&record), 10)}));
  CurrentREALControlVersion = 9;
  RegisterClassExtension(record);
  EXPECT_EQ(host.Calls().back(), Show(static_cast<void*>(&record), 9));
  EXPECT_EQ(host.LookUps("PluginRegisterClassExtension"), 1);
}

TEST(RegisterClassExtension, RegistersNothingWithAHostThatCannot) {
  const FakeHost host;
  REALclassDefinition record = {};
  RegisterClassExtension(record);
  EXPECT_EQ(host.Lines(), Lines{"resolve(PluginRegisterClassExtension)"});
}

}  // namespace
