#include "host/loaded_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "tests/host/macho_trial.h"

namespace host {
namespace {

const char kSharedObject[] = HOST_TRIAL_FOLDER "/host_trial_module.so";

std::uintptr_t Address(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

// Ends the process unless the whole range may be written. A sanitizer would object to the gaps
// between variables.
__attribute__((no_sanitize("address", "undefined"))) void WriteAgain(const MemoryRange& range) {
  for (std::uintptr_t at = range.first; at < range.last; ++at) {
    auto* byte = reinterpret_cast<volatile unsigned char*>(at);
    *byte = *byte;
  }
}

// A file with the macOS library in it.
class MachoOnDisk : public testing::Test {
 protected:
  MachoOnDisk() : path_(testing::TempDir() + "loaded_file_" + std::to_string(getpid())) {
    Write(macho_test::TrialLibrary().Build());
  }
  ~MachoOnDisk() override { unlink(path_.c_str()); }
  void Write(const macho_test::Bytes& bytes) {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }
  std::string Fault() const {
    try {
      LoadFile(path_);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }
  std::string path_;
};

TEST(LoadedFile, ASharedObjectIsOneOfThisSystem) {
  const auto file = LoadFile(kSharedObject);
  void* start = file->Find("REALPluginMain");
  ASSERT_NE(start, nullptr);
  EXPECT_EQ(file->Find("NobodyDefinesThis"), nullptr);
  EXPECT_TRUE(file->Contains(Address(start)));
  EXPECT_FALSE(file->Contains(Address(&kSharedObject)));
  const int local = 0;
  EXPECT_FALSE(file->Contains(Address(&local)));
}

TEST(LoadedFile, TheVariablesOfASharedObjectAreWritableAndItsCodeIsNot) {
  const auto file = LoadFile(kSharedObject);
  const std::vector<MemoryRange> ranges = file->WritableRanges();
  ASSERT_FALSE(ranges.empty());
  const auto start = Address(file->Find("REALPluginMain"));
  for (const MemoryRange& range : ranges) {
    EXPECT_LT(range.first, range.last);
    EXPECT_FALSE(range.first <= start && start < range.last);
    EXPECT_TRUE(file->Contains(range.first));
    EXPECT_TRUE(file->Contains(range.last - 1));
    WriteAgain(range);
  }
}

TEST_F(MachoOnDisk, HugeFilesAreNotRead) {
  ASSERT_EQ(truncate(path_.c_str(), 0x7FFFFFFF), 0);
  EXPECT_EQ(Fault(), path_ + ": too large for a library");
}

#if defined(__i386__)

TEST_F(MachoOnDisk, IsLoadedAndInitialised) {
  const auto file = LoadFile(path_);
  EXPECT_EQ(reinterpret_cast<int (*)()>(file->Find("answer"))(), 42);
  EXPECT_EQ(*static_cast<int*>(file->Find("counter")), (5 + 1) * 2);
}

TEST_F(MachoOnDisk, IsLoadedOnceForAll) {
  auto first = LoadFile(path_);
  auto second = LoadFile(path_);
  auto* counter = static_cast<int*>(first->Find("counter"));
  EXPECT_EQ(second->Find("counter"), counter);
  EXPECT_EQ(*counter, 12) << "initialised once";
  *counter = 1;
  gMachoTrialEnded = 0;
  first.reset();
  EXPECT_EQ(*counter, 1);
  EXPECT_EQ(gMachoTrialEnded, 0) << "somebody still has it";
  second.reset();
  EXPECT_EQ(gMachoTrialEnded, 1);
  EXPECT_EQ(*static_cast<int*>(LoadFile(path_)->Find("counter")), 12) << "anew";
}

TEST_F(MachoOnDisk, WhatIsWrongIsToldAfterThePath) {
  macho_test::Library library = macho_test::TrialLibrary();
  library.kind = 8;
  Write(library.Build());
  EXPECT_EQ(Fault(), path_ + ": a macOS bundle, not a library");
  Write({0xCE, 0xFA, 0xED, 0xFE, 7});
  EXPECT_EQ(Fault(), path_ + ": its bytes end too early");
}

#else

TEST_F(MachoOnDisk, NeedsA32BitProgram) {
  EXPECT_EQ(Fault(), path_ + ": a 32-bit Intel macOS library, but this program is 64-bit");
}

#endif

}  // namespace
}  // namespace host
