#include "host/macho_file.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/host/macho_trial.h"

namespace host {
namespace {

using macho_test::Bytes;
using macho_test::Library;
using macho_test::TrialLibrary;

MachoFile Parse(const Bytes& bytes) {
  return ParseMacho(ByteView(bytes.data(), bytes.size(), "bytes"));
}

std::string FaultOf(const Bytes& bytes) {
  try {
    Parse(bytes);
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "";
}

TEST(MachoFile, IsTakenApart) {
  const Bytes bytes = TrialLibrary().Build();
  const MachoFile file = Parse(bytes);
  ASSERT_EQ(file.segments.size(), 3u);
  EXPECT_EQ(file.segments[0].name, "__TEXT");
  EXPECT_EQ(file.segments[1].address, macho_test::kData);
  EXPECT_EQ(file.segments[1].protection, 3u);
  EXPECT_EQ(file.libraries, std::vector<std::string>{"/usr/lib/libSystem.B.dylib"});
  EXPECT_EQ(file.lowest, macho_test::kLinked);
  EXPECT_EQ(file.headerAddress, macho_test::kLinked);
  EXPECT_EQ(file.span, 0x3000u);
  ASSERT_EQ(file.sections.size(), 5u);
  EXPECT_EQ(file.sections[1].name, "__eh_frame");
  EXPECT_EQ(file.sections[3].type, 9);
  EXPECT_NE(file.Holding(macho_test::kData, 0x1000), nullptr);
  EXPECT_EQ(file.Holding(macho_test::kData, 0x1001), nullptr);
  EXPECT_EQ(file.Holding(macho_test::kLinked - 1, 1), nullptr);
}

TEST(MachoFile, OtherProcessorsAndKindsAreTold) {
  const char* const kOther = "a macOS file for another processor than 32-bit Intel";
  const struct {
    std::uint32_t magic, processor, kind;
    const char* fault;
  } cases[] = {
      {0xFEEDFACE, 7, 1, "a macOS object file, not a library"},
      {0xFEEDFACE, 7, 2, "a macOS program, not a library"},
      {0xFEEDFACE, 7, 8, "a macOS bundle, not a library"},
      {0xFEEDFACE, 7, 9, "a macOS file of another kind, not a library"},
      {0xFEEDFACE, 18, 6, kOther},
      {0xFEEDFACE, 0x01000007, 6, kOther},
      {0xFEEDFACF, 0x01000007, 6,
       "a 64-bit Intel macOS file, but only 32-bit Intel libraries can be loaded"},
      {0xFEEDFACF, 0x0100000C, 6, kOther},
      {0xCEFAEDFE, 0x12000000, 0x06000000, kOther},
      {0x12345678, 7, 6, "not a shared library"},
  };
  for (const auto& one : cases) {
    Library library = TrialLibrary();
    library.magic = one.magic;
    library.processor = one.processor;
    library.kind = one.kind;
    EXPECT_EQ(FaultOf(library.Build()), one.fault);
  }
}

// A universal file with parts for these processors, the library in each.
Bytes Universal(const std::vector<std::uint32_t>& processors, const Bytes& library) {
  Bytes out;
  const auto bigEndian = [&](std::uint32_t value) { out.Word(__builtin_bswap32(value)); };
  bigEndian(0xCAFEBABE);
  bigEndian(static_cast<std::uint32_t>(processors.size()));
  for (const std::uint32_t processor : processors) {
    bigEndian(processor);
    bigEndian(3);
    bigEndian(0x1000);
    bigEndian(static_cast<std::uint32_t>(library.size()));
    bigEndian(12);
  }
  out.resize(0x1000);
  return out.Add(library);
}

TEST(MachoFile, TheIntelPartOfAUniversalFileCounts) {
  const Bytes library = TrialLibrary().Build();
  EXPECT_EQ(FaultOf(Universal({18, 7}, library)), "");
  EXPECT_EQ(FaultOf(Universal({18}, library)),
            "a universal macOS file without a part for 32-bit Intel processors");
  Bytes cut = Universal({7}, library);
  cut.pop_back();
  EXPECT_EQ(FaultOf(cut), "its Intel bytes lie outside of it");
  cut.resize(20);
  EXPECT_EQ(FaultOf(cut), "its universal parts lie outside of it");
}

TEST(MachoFile, DamagedCommandsAreNamed) {
  using Places = std::vector<std::size_t>;
  const auto set = [](Library::Command command, std::size_t offset, std::uint32_t value) {
    return
        [=](Bytes& bytes, const Places& places) { bytes.SetWord(places[command] + offset, value); };
  };
  constexpr auto kText = Library::kTextSegment;
  constexpr auto kData = Library::kDataSegment;
  constexpr std::size_t kFirstSection = 56;
  const struct {
    std::function<void(Bytes&, const Places&)> damage;
    const char* fault;
  } cases[] = {
      {[](Bytes& bytes, const Places&) { bytes.SetWord(20, 0x7FFFFFFF); },
       "its load commands lie outside of it"},
      {[](Bytes& bytes, const Places&) { bytes.SetWord(16, 0xFFFFFFFF); },
       "its load commands end too early"},
      {[](Bytes& bytes, const Places&) { bytes.SetWord(16, 3); },
       "its load commands do not fill their room"},
      {set(kText, 4, 0), "it has a load command of a wrong size"},
      {set(kText, 4, 58), "it has a load command of a wrong size"},
      {set(kText, 4, 0xFFFFFFFC), "it has a load command of a wrong size"},
      {set(kText, 4, 60), "it has a segment command of a wrong size"},
      {set(kText, 48, 0x40000000), "it has a segment command of a wrong size"},
      {set(kText, 24, 0x40010), "it has a segment that starts within a page"},
      {set(kText, 28, 16), "it has a segment larger in the file"},
      {set(kText, 28, 0xFFFFFFFF), "it has a segment beyond 32 bits"},
      {set(kText, 28, 0x1001), "it has segments that overlap"},
      {set(kText, 32, 0x10000000), "its segment's bytes lie outside of it"},
      {set(kText, 36, 0x10000000), "its segment's bytes lie outside of it"},
      {set(kText, 44, 8), "it has a segment of unknown protection"},
      {set(kText, 52, 8), "it has an encrypted segment"},
      {set(kData, 24, 0x40000), "it has a section outside its segment"},
      {set(kData, 32, 0), "it has a section whose bytes are not its segment's"},
      {set(kText, kFirstSection + 32, 0x10000), "it has a section outside its segment"},
      {set(kText, kFirstSection + 36, 0xFFFFFFFF), "it has a section outside its segment"},
      {set(kText, kFirstSection + 40, 0), "it has a section whose bytes are not its segment's"},
      {set(kText, kFirstSection + 56, 0x13),
       "it has thread-local variables, which are not supported"},
      {set(Library::kTablesSegment, 24, 0xFFFFE000), "it spans too much memory"},
      {set(Library::kLoaderInfo, 0, 0x80000034), "it needs a loader that knows load command 52"},
      {set(Library::kLoaderInfo, 0, 0x1B), "it has no compressed loader information"},
      {set(Library::kLoaderInfo, 0, 0xD), "it has a library's name outside its command"},
      {set(Library::kLoaderInfo, 0, 0x11), "it has an initial routine, which is not supported"},
      {set(Library::kLoaderInfo, 12, 0x10000000), "its rebase instructions lie outside of it"},
      {set(Library::kLoaderInfo, 40, 0x10000000), "its exported symbols lie outside of it"},
      {set(Library::kSymbolTable, 12, 0xFFFFFFFF), "its symbols lie outside of it"},
      {set(Library::kSymbolTable, 20, 0xFFFFFFFF), "its symbols' names lie outside of it"},
      {set(Library::kOwnName, 0, 0x1B), "it has no name of its own"},
      {set(Library::kOwnName, 8, 0x10000000), "it has a library's name outside its command"},
      {set(Library::kOwnName, 44, 0x41414141), "it has a library's name without an end"},
  };
  for (const auto& one : cases) {
    Places places;
    Bytes bytes = TrialLibrary().Build(&places);
    one.damage(bytes, places);
    EXPECT_EQ(FaultOf(bytes), one.fault);
  }
}

TEST(MachoFile, CommandsThatCountOnceAreNotTakenTwice) {
  const struct {
    Bytes command;
    const char* fault;
  } cases[] = {
      {Bytes().Word(0x22).Word(48), "it has compressed loader information twice"},
      {Bytes().Word(2).Word(24), "it has two symbol tables"},
      {Bytes().Word(0xD).Word(28), "it has two names of its own"},
      {Bytes().Word(0x24).Word(16), ""},
      {Bytes().Word(0x8000001C).Word(16), ""},
  };
  for (const auto& one : cases) {
    Library library = TrialLibrary();
    library.moreCommands = one.command;
    library.moreCommands.resize(one.command.WordAt(4));
    library.moreCommandsCount = 1;
    EXPECT_EQ(FaultOf(library.Build()), one.fault);
  }
}

TEST(MachoFile, LooksLikeOneByItsFirstWord) {
  const auto looks = [](std::uint32_t word) {
    const Bytes bytes = Bytes().Word(word);
    return LooksLikeMacho(ByteView(bytes.data(), bytes.size(), "bytes"));
  };
  for (const std::uint32_t word :
       {0xFEEDFACEu, 0xFEEDFACFu, 0xCEFAEDFEu, 0xCFFAEDFEu, 0xBEBAFECAu}) {
    EXPECT_TRUE(looks(word)) << word;
  }
  EXPECT_FALSE(looks(0x464C457F));
  EXPECT_FALSE(looks(0xCAFEBABE));
}

}  // namespace
}  // namespace host
