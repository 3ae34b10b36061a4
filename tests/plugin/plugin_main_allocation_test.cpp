// The plug-in's file started with too little memory.
#include <gtest/gtest.h>

#include "tests/plugin/plugin_file.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::kExtendedDeclarations;
using plugin_test::PluginFile;
using plugin_test::RegisteringHost;
using support::AllocationWatch;
using Sizes = std::vector<std::size_t>;

constexpr std::size_t kWord = sizeof(std::uintptr_t);

Sizes SizesOfAStart(double version) {
  const RegisteringHost host(version);
  PluginFile file;
  const AllocationWatch watch;
  file.Start();
  return watch.Sizes();
}

TEST(StartingPlugin, AllocatesAModuleItsMethodsTheirTextsAndItsName) {
  Sizes expected = {24 * kWord, 30 * kWord};
  for (const char* declaration : kExtendedDeclarations) {
    expected.push_back(std::string(declaration).size() + 1);
  }
  expected.push_back(27);
  EXPECT_EQ(SizesOfAStart(2013.04), expected);
}

TEST(StartingPlugin, AllocatesOneRecordAndOneListForOldHosts) {
  EXPECT_EQ(SizesOfAStart(2011.04), (Sizes{25 * kWord, 20 * kWord}));
}

TEST(StartingPlugin, AllocatesNothingForHosts2012AndFrom3000On) {
  EXPECT_EQ(SizesOfAStart(2012.0), Sizes{});
  EXPECT_EQ(SizesOfAStart(3000.0), Sizes{});
}

struct ShortageCase {
  double version;
  int allocations;
};

TEST(StartingPlugin, RegistersNothingWhicheverAllocationFails) {
  const ShortageCase cases[] = {{2013.04, 8}, {2013.0, 8}, {2011.04, 2}, {0.0, 2}};
  for (const ShortageCase& row : cases) {
    for (int failing = 1; failing <= row.allocations; ++failing) {
      for (const bool andLater : {false, true}) {
        const RegisteringHost host(row.version);
        PluginFile file;
        const AllocationWatch watch(failing, andLater);
        file.Start();
        EXPECT_TRUE(host.Records().empty()) << row.version << ' ' << failing;
        EXPECT_EQ(watch.Calls(), failing) << row.version;
        EXPECT_EQ(host.Calls().size(), 2u) << "only the version is read and announced";
      }
    }
  }
}

TEST(StartingPlugin, RegistersWhenAnAllocationBehindTheLastOneWouldFail) {
  for (const ShortageCase& row : {ShortageCase{2013.04, 9}, {2011.04, 3}, {2012.0, 1}}) {
    const RegisteringHost host(row.version);
    PluginFile file;
    const AllocationWatch watch(row.allocations);
    file.Start();
    EXPECT_EQ(host.Records().size(), 1u) << row.version;
  }
}

}  // namespace
