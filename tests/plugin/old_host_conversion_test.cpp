// Records in the layout of hosts below 2012.0, converted word by word.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "plugin/class_registration.h"
#include "tests/plugin/fake_host.h"
#include "tests/plugin/leftovers.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::DeliberateLeftovers;
using plugin_test::Word;
using plugin_test::WordsOf;
using support::AllocationWatch;
using Words = std::vector<std::uintptr_t>;

constexpr std::size_t kWord = sizeof(std::uintptr_t);

// The words of every list count up from a number of its own; every other word of the record is
// 9000 and its place.
class FilledRecord {
 public:
  FilledRecord() {
    Words words(25);
    for (std::size_t i = 0; i < 25; ++i) words[i] = 9000 + i;
    words[7] = Word(properties.data());
    words[8] = 2;
    words[9] = Word(methods.data());
    words[10] = 3;
    words[11] = Word(fourWordEntries.data());
    words[12] = 2;
    words[18] = Word(fiveWordEntries.data());
    words[19] = 2;
    words[21] = Word(sharedProperties.data());
    words[22] = 1;
    words[23] = Word(sharedMethods.data());
    words[24] = 1;
    std::memcpy(&record, words.data(), sizeof record);
  }

  // For converted records: gives the new lists back.
  void FreeLists() {
    for (void* list : {record.properties, record.methods, record.fourWordEntries,
                       record.fiveWordEntries, record.sharedProperties, record.sharedMethods}) {
      std::free(list);
    }
  }

  Words properties = Counting(100, 2 * 12);
  Words methods = Counting(200, 3 * 6);
  Words fourWordEntries = Counting(300, 2 * 4);
  Words fiveWordEntries = Counting(400, 2 * 5);
  Words sharedProperties = Counting(500, 12);
  Words sharedMethods = Counting(600, 6);
  REALclassDefinition record;

 private:
  static Words Counting(std::uintptr_t first, std::size_t count) {
    Words words(count);
    for (std::size_t i = 0; i < count; ++i) words[i] = first + i;
    return words;
  }
};

Words WordsAt(const void* list, std::size_t count) {
  const auto* words = static_cast<const std::uintptr_t*>(list);
  return {words, words + count};
}

TEST(OldHostConversion, ConvertsEveryWordAndEveryList) {
  FilledRecord filled;
  ASSERT_TRUE(ConvertForOldHost(filled.record));
  const auto words = WordsOf(filled.record);
  const std::uintptr_t kList = 0;  // a pointer; what it points at is checked below
  // clang-format off
  const std::uintptr_t expected[25] = {
      9, 9001, 9002, 9003, 9004, 9005, 9006,
      kList, 2, kList, 3, kList, 2,
      9013, 9014, 9015, 0, 0,
      kList, 2, 9020, kList, 1, kList, 1};
  // clang-format on
  for (std::size_t i = 0; i < 25; ++i) {
    const bool isList = i == 7 || i == 9 || i == 11 || i == 18 || i == 21 || i == 23;
    EXPECT_EQ(isList ? kList : words[i], expected[i]) << i;
  }
  EXPECT_EQ(WordsAt(filled.record.properties, 20),
            (Words{100, 101, 102, 103, 104, 105, 106, 107, 108, 109,  //
                   112, 113, 114, 115, 116, 117, 118, 119, 120, 121}));
  EXPECT_EQ(WordsAt(filled.record.methods, 12),
            (Words{200, 201, 202, 203, 206, 207, 208, 209, 212, 213, 214, 215}));
  EXPECT_EQ(WordsAt(filled.record.fourWordEntries, 4), (Words{300, 301, 304, 305}));
  EXPECT_EQ(WordsAt(filled.record.fiveWordEntries, 6), (Words{400, 401, 402, 405, 406, 407}));
  EXPECT_EQ(WordsAt(filled.record.sharedProperties, 10),
            (Words{500, 501, 502, 503, 504, 505, 506, 507, 508, 509}));
  EXPECT_EQ(WordsAt(filled.record.sharedMethods, 4), (Words{600, 601, 602, 603}));
  filled.FreeLists();
}

TEST(OldHostConversion, FourWordEntriesPointAtTheirCopies) {
  FilledRecord filled;
  ASSERT_TRUE(ConvertForOldHost(filled.record));
  const auto copies = static_cast<std::uintptr_t*>(filled.record.fourWordEntries);
  EXPECT_EQ(filled.fourWordEntries,
            (Words{300, Word(copies), 302, 303, 304, Word(copies + 2), 306, 307}));
  filled.FreeLists();
}

TEST(OldHostConversion, LeavesTheOtherListsOfTheSourceAsTheyAre) {
  FilledRecord filled;
  const FilledRecord before;
  ASSERT_TRUE(ConvertForOldHost(filled.record));
  EXPECT_EQ(filled.properties, before.properties);
  EXPECT_EQ(filled.methods, before.methods);
  EXPECT_EQ(filled.fiveWordEntries, before.fiveWordEntries);
  EXPECT_EQ(filled.sharedProperties, before.sharedProperties);
  EXPECT_EQ(filled.sharedMethods, before.sharedMethods);
  filled.FreeLists();
}

TEST(OldHostConversion, AllocatesTheRecordAndThenEachList) {
  FilledRecord filled;
  const AllocationWatch watch;
  ASSERT_TRUE(ConvertForOldHost(filled.record));
  EXPECT_EQ(watch.Sizes(), (std::vector<std::size_t>{25 * kWord, 20 * kWord, 12 * kWord, 4 * kWord,
                                                     4 * kWord, 6 * kWord, 10 * kWord}));
  filled.FreeLists();
}

TEST(OldHostConversion, AFailedAllocationLeavesTheRecordAsItWas) {
  for (int failing = 1; failing <= 7; ++failing) {
    const DeliberateLeftovers leftovers;
    FilledRecord filled;
    const auto before = WordsOf(filled.record);
    {
      const AllocationWatch watch(failing);
      EXPECT_FALSE(ConvertForOldHost(filled.record)) << failing;
      EXPECT_EQ(watch.Calls(), failing) << "it goes on after a failure";
    }
    EXPECT_EQ(WordsOf(filled.record), before) << failing;
    EXPECT_EQ(filled.methods, FilledRecord().methods) << failing;
    // It can be converted later, when there is memory again.
    EXPECT_TRUE(ConvertForOldHost(filled.record)) << failing;
    EXPECT_EQ(WordsAt(filled.record.fourWordEntries, 1), Words{300}) << failing;
  }
}

TEST(OldHostConversion, EmptyListsStayEmpty) {
  for (const bool withPointers : {false, true}) {
    FilledRecord filled;
    REALclassDefinition& record = filled.record;
    record.propertyCount = record.methodCount = record.fourWordCount = 0;
    record.fiveWordCount = record.sharedPropertyCount = record.sharedMethodCount = 0;
    if (!withPointers) {
      record.properties = record.methods = record.fourWordEntries = nullptr;
      record.fiveWordEntries = record.sharedProperties = record.sharedMethods = nullptr;
    }
    const AllocationWatch watch;
    ASSERT_TRUE(ConvertForOldHost(record));
    EXPECT_EQ(watch.Sizes(), std::vector<std::size_t>{25 * kWord});
    const auto words = WordsOf(record);
    EXPECT_EQ(words[0], 9u);
    EXPECT_EQ(words[20], 9020u);
    for (const std::size_t count : {8, 10, 12, 19, 22, 24}) EXPECT_EQ(words[count], 0u) << count;
    for (const std::size_t list : {7, 9, 11, 18, 21, 23}) EXPECT_EQ(words[list], 0u) << list;
    EXPECT_EQ(filled.fourWordEntries, FilledRecord().fourWordEntries);
  }
}

TEST(OldHostConversion, MissingListsStayMissingWhateverTheirCounts) {
  FilledRecord filled;
  REALclassDefinition& record = filled.record;
  record.properties = record.methods = record.fourWordEntries = nullptr;
  record.fiveWordEntries = record.sharedProperties = record.sharedMethods = nullptr;
  ASSERT_TRUE(ConvertForOldHost(record));
  const auto words = WordsOf(record);
  for (const std::size_t list : {7, 9, 11, 18, 21, 23}) EXPECT_EQ(words[list], 0u) << list;
  EXPECT_EQ(words[8], 2u);
  EXPECT_EQ(words[10], 3u);
  EXPECT_EQ(words[24], 1u);
}

TEST(OldHostConversion, ALongListKeepsItsOrder) {
  FilledRecord filled;
  Words many(1000 * 6);
  for (std::size_t i = 0; i < many.size(); ++i) many[i] = i;
  filled.record.methods = many.data();
  filled.record.methodCount = 1000;
  ASSERT_TRUE(ConvertForOldHost(filled.record));
  const Words converted = WordsAt(filled.record.methods, 4000);
  for (std::size_t i = 0; i < 4000; ++i) ASSERT_EQ(converted[i], i / 4 * 6 + i % 4) << i;
  filled.FreeLists();
}

}  // namespace
