// The plug-in's file started more than once in one process.
#include <gtest/gtest.h>

#include "tests/plugin/plugin_file.h"
#include "tests/support/allocation_faults.h"

namespace {

using plugin_test::kDeclarations;
using plugin_test::kExtendedDeclarations;
using plugin_test::PluginFile;
using plugin_test::Received;
using plugin_test::RegisteringHost;
using plugin_test::TextAt;
using plugin_test::WordsAt;

void ExpectModule(const Received& received, std::uintptr_t version, std::uintptr_t flags) {
  ASSERT_TRUE(received.isModule);
  EXPECT_EQ(received.words[0], version);
  ASSERT_EQ(received.words[3], 5u);
  const auto words = WordsAt(received.words[2], 30);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(TextAt(words[i * 6 + 2]), kExtendedDeclarations[i]);
    EXPECT_EQ(words[i * 6 + 3], flags);
  }
}

void ExpectClass(const Received& received, std::uintptr_t version, std::size_t stride,
                 std::uintptr_t flags) {
  ASSERT_FALSE(received.isModule);
  EXPECT_EQ(received.words[0], version);
  ASSERT_EQ(received.words[10], 5u);
  const auto words = WordsAt(received.words[9], 5 * stride);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(TextAt(words[i * stride + 2]), kDeclarations[i]);
    EXPECT_EQ(words[i * stride + 3], flags);
  }
}

TEST(RestartedPlugin, RegistersAWholeNewModuleEachTime) {
  const RegisteringHost host(2013.04);
  PluginFile file;
  file.Start();
  file.Start();
  file.Start();
  ASSERT_EQ(host.Records().size(), 3u);
  for (const Received& received : host.Records()) {
    ASSERT_NO_FATAL_FAILURE(ExpectModule(received, 13, 20));
  }
  EXPECT_NE(host.Records()[0].address, host.Records()[1].address);
}

TEST(RestartedPlugin, ConvertsItsRecordOnce) {
  const RegisteringHost host(2011.04);
  PluginFile file;
  file.Start();
  file.Start();
  file.Start();
  ASSERT_EQ(host.Records().size(), 3u);
  for (const Received& received : host.Records()) {
    ASSERT_NO_FATAL_FAILURE(ExpectClass(received, 9, 4, 4));
  }
  EXPECT_EQ(host.Records()[0].words, host.Records()[2].words);
}

TEST(RestartedPlugin, RegistersItsOwnRecordAgain) {
  const RegisteringHost host(2012.0);
  PluginFile file;
  file.Start();
  file.Start();
  ASSERT_EQ(host.Records().size(), 2u);
  ASSERT_NO_FATAL_FAILURE(ExpectClass(host.Records()[0], 10, 6, 4));
  EXPECT_EQ(host.Records()[0].words, host.Records()[1].words);
}

TEST(RestartedPlugin, KeepsTheFlagsOfItsFirstStart) {
  RegisteringHost host(2012.0);
  PluginFile file;
  file.Start();
  host.SetVersion(2013.04);
  file.Start();
  host.SetVersion(2009.0);
  file.Start();
  ASSERT_EQ(host.Records().size(), 3u);
  ASSERT_NO_FATAL_FAILURE(ExpectClass(host.Records()[0], 10, 6, 4));
  ASSERT_NO_FATAL_FAILURE(ExpectModule(host.Records()[1], 13, 20));
  ASSERT_NO_FATAL_FAILURE(ExpectClass(host.Records()[2], 9, 4, 4));
}

// Longer entries cannot be read from a list of shorter ones.
TEST(RestartedPlugin, NeverHandsAConvertedRecordToAHostThatReadsLongerEntries) {
  for (const double later : {2012.0, 2013.04, 3000.0}) {
    RegisteringHost host(2009.0);
    PluginFile file;
    file.Start();
    host.SetVersion(later);
    file.Start();
    EXPECT_EQ(host.Records().size(), 1u) << later;
    host.SetVersion(2009.0);
    file.Start();
    ASSERT_EQ(host.Records().size(), 2u) << later;
    ASSERT_NO_FATAL_FAILURE(ExpectClass(host.Records()[1], 9, 4, 0));
  }
}

TEST(RestartedPlugin, ConvertsLaterWhatItCouldNotConvertAtFirst) {
  const RegisteringHost host(2011.04);
  PluginFile file;
  {
    const support::AllocationWatch watch(2);
    file.Start();
  }
  EXPECT_TRUE(host.Records().empty());
  file.Start();
  ASSERT_EQ(host.Records().size(), 1u);
  ASSERT_NO_FATAL_FAILURE(ExpectClass(host.Records()[0], 9, 4, 4));
}

TEST(RestartedPlugin, StartsAnewWhenItWasUnloaded) {
  RegisteringHost host(2009.0);
  {
    PluginFile file;
    file.Start();
  }
  host.SetVersion(2013.04);
  PluginFile file;
  file.Start();
  ASSERT_EQ(host.Records().size(), 2u);
  ASSERT_NO_FATAL_FAILURE(ExpectModule(host.Records()[1], 13, 20));
}

}  // namespace
