#include "host/library_check.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

namespace host {
namespace {

class LibraryCheck : public testing::Test {
 protected:
  LibraryCheck() : path_(testing::TempDir() + "library_check_" + std::to_string(getpid())) {}
  ~LibraryCheck() override { unlink(path_.c_str()); }
  std::string Check(const std::string& content) {
    std::ofstream(path_, std::ios::binary) << content;
    std::string why = WhyNotLoadable(path_);
    if (!why.empty()) {
      EXPECT_EQ(why.substr(0, path_.size() + 2), path_ + ": ");
      why.erase(0, path_.size() + 2);
    }
    return why;
  }
  static std::string Header(int bits, char type) {
    std::string header(64, '\0');
    header.replace(0, SELFMAG, ELFMAG);
    header[EI_CLASS] = static_cast<char>(bits == 64 ? ELFCLASS64 : ELFCLASS32);
    header[16] = type;
    return header;
  }
  static constexpr int kOwnBits = sizeof(void*) * 8;
  static constexpr int kOtherBits = 96 - kOwnBits;
  std::string path_;
};

TEST_F(LibraryCheck, AMissingFileAndAFolderAreNamed) {
  EXPECT_EQ(WhyNotLoadable("/no/such/file.so"), "/no/such/file.so: no such file");
  EXPECT_EQ(WhyNotLoadable("/"), "/: not a file");
}

TEST_F(LibraryCheck, OtherFilesAreNoLibraries) {
  EXPECT_EQ(Check(""), "not a shared library");
  EXPECT_EQ(Check("text"), "not a shared library");
  EXPECT_EQ(Check(std::string(100, 'x')), "not a shared library");
  EXPECT_EQ(Check(Header(kOwnBits, ET_EXEC)), "not a shared library");
}

TEST_F(LibraryCheck, ALibraryOfTheOtherWordSizeIsToldAsSuch) {
  EXPECT_EQ(Check(Header(kOtherBits, ET_DYN)), "a " + std::to_string(kOtherBits) +
                                                   "-bit library, but this program is " +
                                                   std::to_string(kOwnBits) + "-bit");
}

TEST_F(LibraryCheck, AMacFileIsLeftToItsLoader) {
  for (const char* start : {"\xCE\xFA\xED\xFE", "\xCF\xFA\xED\xFE", "\xCA\xFE\xBA\xBE"}) {
    EXPECT_EQ(Check(start), "");
    EXPECT_TRUE(IsMachoFile(path_));
  }
  EXPECT_EQ(Check("\xCE\xFA\xED"), "not a shared library");
  EXPECT_FALSE(IsMachoFile(path_));
  EXPECT_EQ(Check(Header(kOwnBits, ET_DYN)), "");
  EXPECT_FALSE(IsMachoFile(path_));
}

TEST_F(LibraryCheck, NothingSpeaksAgainstALibraryOfTheOwnWordSize) {
  EXPECT_EQ(Check(Header(kOwnBits, ET_DYN)), "");
}

}  // namespace
}  // namespace host
