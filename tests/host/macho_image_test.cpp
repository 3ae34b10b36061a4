// Libraries made in memory, loaded and run.
#include "host/macho_image.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "tests/host/faults.h"
#include "tests/host/macho_trial.h"

// Of the library that unwinds this process.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the library names it so.
extern "C" const void* _Unwind_Find_FDE(void* address, void* bases[3]);

namespace host {
namespace {

using macho_test::Library;
using macho_test::TrialLibrary;

std::string FaultOf(const Library& library) {
  try {
    const MachoImage image(library.Build());
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "";
}

#if !defined(__i386__)

TEST(MachoImage, IsRefusedByAProgramOfAnotherWordSize) {
  EXPECT_EQ(FaultOf(TrialLibrary()), "a 32-bit Intel macOS library, but this program is 64-bit");
}

#else

class MachoImageTest : public testing::Test {
 protected:
  template <typename Function>
  Function* Get(const char* name) {
    void* found = image_.Find(name);
    if (found == nullptr) throw std::runtime_error(std::string(name) + " is not exported");
    return reinterpret_cast<Function*>(found);
  }
  int Call(const char* name) { return Get<int()>(name)(); }
  // One of `pointers`.
  void* Slot(int number) { return Get<void*>("pointers")[number]; }

  MachoImage image_{TrialLibrary().Build()};
};

TEST_F(MachoImageTest, ItsExportsAreFoundByTheirNamesInC) {
  EXPECT_EQ(Call("answer"), 42);
  EXPECT_EQ(*Get<int>("counter"), 5);
  EXPECT_EQ(image_.Find("answe"), nullptr);
  EXPECT_EQ(image_.Find("answers"), nullptr);
  EXPECT_EQ(image_.Find("_answer"), nullptr);
}

TEST_F(MachoImageTest, WhatRefersToItselfMovesWithIt) {
  EXPECT_EQ(Slot(macho_test::kToAnswer), image_.Find("answer"));
  *Get<int>("counter") = 1234;
  EXPECT_EQ(Call("counted"), 1234);
}

TEST_F(MachoImageTest, TwoOfThemKeepApart) {
  MachoImage other(TrialLibrary().Build());
  *Get<int>("counter") = 1234;
  EXPECT_EQ(*static_cast<int*>(other.Find("counter")), 5);
  EXPECT_NE(other.Find("answer"), image_.Find("answer"));
}

TEST_F(MachoImageTest, ImportsComeFromTheProcess) {
  EXPECT_EQ(Get<int(const char*)>("length")("four"), 4);
  EXPECT_EQ(Call("callee"), MachoTrialCallee());
  char* const strlenHere = static_cast<char*>(Slot(macho_test::kToStrlen));
  EXPECT_EQ(Slot(macho_test::kToStrlenPlus2), strlenHere + 2);
  EXPECT_EQ(Slot(macho_test::kPointerToEnded), &gMachoTrialEnded);
  void* block = std::malloc(10);
  ASSERT_NE(Slot(macho_test::kLazily), nullptr);
  reinterpret_cast<void (*)(void*)>(Slot(macho_test::kLazily))(block);
}

TEST_F(MachoImageTest, AMissingWeakImportIsNull) { EXPECT_EQ(Slot(macho_test::kMissing), nullptr); }

TEST_F(MachoImageTest, SharedSymbolsAreItsOwnOrTheProcessesOrStay) {
  EXPECT_EQ(Slot(macho_test::kOwnWeakly), image_.Find("answer"));
  EXPECT_EQ(Slot(macho_test::kForeignWeakly), Slot(macho_test::kToStrlen));
  EXPECT_EQ(Slot(macho_test::kNobodysWeakly), image_.Find("answer"));
}

TEST(MachoImage, AMissingSymbolIsNamedWithItsLibrary) {
  Library library = TrialLibrary();
  library.libraries = {"/usr/lib/one.dylib", "/usr/lib/two.dylib"};
  library.bind = macho_test::Binds(
      {{"_strlen", macho_test::kData, 1}, {"_nobody_has_this", macho_test::kData, 2}});
  EXPECT_EQ(FaultOf(library),
            "it needs _nobody_has_this of /usr/lib/two.dylib, which this program does not have");
  library.bind = macho_test::Binds({{"_nobody_has_this", macho_test::kData, -2}});
  EXPECT_EQ(FaultOf(library),
            "it needs _nobody_has_this of any library, which this program does not have");
  library.bind = macho_test::Binds({{"_strlen", macho_test::kData, 0}});
  EXPECT_EQ(FaultOf(library), "it needs _strlen of its own, which this program does not have");
}

TEST(MachoImage, RunsInitialisersAndTerminatorsInTheirOrders) {
  gMachoTrialEnded = 10;
  {
    MachoImage image(TrialLibrary().Build());
    const auto* counter = static_cast<int*>(image.Find("counter"));
    EXPECT_EQ(*counter, 5) << "not yet";
    image.Initialise();
    EXPECT_EQ(*counter, (5 + 1) * 2);
    EXPECT_EQ(gMachoTrialEnded, 10) << "not yet";
  }
  EXPECT_EQ(gMachoTrialEnded, 10 * 2 + 1) << "the last one first";
  { const MachoImage never(TrialLibrary().Build()); }
  EXPECT_EQ(gMachoTrialEnded, 10 * 2 + 1) << "what was not initialised does not end";
}

TEST(MachoImage, InitialisersOutsideItsCodeAreRefused) {
  Library library = TrialLibrary();
  library.starters.SetWord(0, macho_test::kData);
  EXPECT_EQ(FaultOf(library), "it has an initialiser outside its code");
  library.starters.resize(6);
  EXPECT_EQ(FaultOf(library), "it has half an initialiser");
}

TEST_F(MachoImageTest, ItsMemoryIsProtected) {
  Touch(static_cast<unsigned char*>(image_.Find("counter")));
  EXPECT_FAULT(Touch(static_cast<unsigned char*>(image_.Find("answer"))));
  *Get<int>("counter") = 0xC3;  // an instruction that returns
  EXPECT_FAULT(Get<void()>("counter")());
}

TEST(MachoImage, DataMayBeReadOnlyOnceItIsInPlace) {
  Library library = TrialLibrary();
  library.dataFlags = 0x10;
  const MachoImage image(library.Build());
  auto* pointers = static_cast<void**>(image.Find("pointers"));
  EXPECT_EQ(pointers[macho_test::kToAnswer], image.Find("answer"));
  EXPECT_FAULT(Touch(reinterpret_cast<unsigned char*>(pointers)));
  EXPECT_TRUE(image.WritableRanges().empty());
}

TEST_F(MachoImageTest, ItsVariablesAreItsWritableMemory) {
  const std::vector<MemoryRange> ranges = image_.WritableRanges();
  ASSERT_EQ(ranges.size(), 1u);
  const auto counter = reinterpret_cast<std::uintptr_t>(image_.Find("counter"));
  EXPECT_EQ(ranges[0].first, counter);
  EXPECT_EQ(ranges[0].last, counter + 0x1000);
  EXPECT_TRUE(image_.Contains(counter));
  EXPECT_TRUE(image_.Contains(reinterpret_cast<std::uintptr_t>(image_.Find("answer"))));
  EXPECT_FALSE(image_.Contains(reinterpret_cast<std::uintptr_t>(&ranges)));
}

TEST(MachoImage, IsGoneOnceItIsUnloaded) {
  unsigned char* counter = nullptr;
  {
    const MachoImage image(TrialLibrary().Build());
    counter = static_cast<unsigned char*>(image.Find("counter"));
    Touch(counter);
  }
  EXPECT_FAULT(Touch(counter));
}

void ThrowRangeError() { throw std::range_error("thrown"); }
void ThrowNumber() { throw 5; }
void Nothing() {}

TEST_F(MachoImageTest, ExceptionsPassThroughItsFrames) {
  const auto through = Get<void(void())>("through");
  through(Nothing);
  EXPECT_THROW(through(ThrowRangeError), std::range_error);
  EXPECT_THROW(through(ThrowNumber), int);
}

TEST_F(MachoImageTest, ExceptionsAreCaughtByTypeAndOthersCleanUpAndPassOut) {
  const auto caught = Get<int(void (*)(), int*)>("caught");
  int selector = -1;
  EXPECT_EQ(caught(Nothing, &selector), 0);
  EXPECT_EQ(selector, -1);
  EXPECT_EQ(caught(ThrowRangeError, &selector), 1);
  EXPECT_EQ(selector, 1);
  EXPECT_THROW(caught(ThrowNumber, &selector), int);
  EXPECT_EQ(selector, 0) << "entered to clean up";
}

// Whether the process knows how to leave the function at that address.
bool HasFrame(void* function) {
  void* bases[3] = {};
  return _Unwind_Find_FDE(static_cast<char*>(function) + 1, bases) != nullptr;
}

TEST(MachoImage, ItsFramesAreUnknownOnceItIsUnloaded) {
  void* through = nullptr;
  {
    const MachoImage image(TrialLibrary().Build());
    through = image.Find("through");
    EXPECT_TRUE(HasFrame(through));
    EXPECT_FALSE(HasFrame(image.Find("answer"))) << "it has no table";
  }
  EXPECT_FALSE(HasFrame(through));
  EXPECT_THROW(ThrowRangeError(), std::range_error);
}

#endif

}  // namespace
}  // namespace host
