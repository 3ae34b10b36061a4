// The records that the plug-in's file hands over when it is started, word by word, and the order of
// what it asks the host.
#include <gtest/gtest.h>

#include <set>

#include "tests/plugin/plugin_file.h"

namespace {

using plugin_test::kDeclarations;
using plugin_test::kExtendedDeclarations;
using plugin_test::PluginFile;
using plugin_test::Received;
using plugin_test::RegisteringHost;
using plugin_test::TextAt;
using plugin_test::WordsAt;
using Lines = std::vector<std::string>;

const Lines kModuleLines = {"resolve(REALGetRBVersion)",      "REALGetRBVersion()",
                            "resolve(RegisterPluginVersion)", "RegisterPluginVersion(13)",
                            "resolve(PluginRegisterModule)",  "PluginRegisterModule"};

Lines ClassExtensionLines(const std::string& recordVersion) {
  return {"resolve(REALGetRBVersion)",
          "REALGetRBVersion()",
          "resolve(RegisterPluginVersion)",
          "RegisterPluginVersion(" + recordVersion + ")",
          "resolve(PluginRegisterClassExtension)",
          "PluginRegisterClassExtension"};
}

// The five methods of a list with entries of `stride` words; the words behind the flags are 0.
void ExpectMethods(const PluginFile& file, std::uintptr_t list, std::size_t stride,
                   const char* const (&declarations)[5], std::uintptr_t flags) {
  std::set<std::uintptr_t> routines;
  for (std::size_t i = 0; i < 5; ++i) {
    const auto words = WordsAt(list + i * stride * sizeof(std::uintptr_t), stride);
    EXPECT_TRUE(file.Contains(words[0])) << i;
    routines.insert(words[0]);
    EXPECT_EQ(words[1], 0u) << i;
    EXPECT_EQ(TextAt(words[2]), declarations[i]);
    EXPECT_EQ(words[3], flags) << i;
    for (std::size_t extra = 4; extra < stride; ++extra) EXPECT_EQ(words[extra], 0u) << i;
  }
  EXPECT_EQ(routines.size(), 5u);
}

void ExpectClassWords(const Received& received, std::uintptr_t version, std::uintptr_t flags) {
  ASSERT_FALSE(received.isModule);
  ASSERT_EQ(received.words.size(), 25u);
  EXPECT_EQ(received.words[0], version);
  EXPECT_EQ(TextAt(received.words[1]), "Picture");
  EXPECT_EQ(received.words[10], 5u);
  EXPECT_EQ(received.words[20], flags);
  for (const std::size_t zero :
       {2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18, 19, 21, 22, 23, 24}) {
    EXPECT_EQ(received.words[zero], 0u) << zero;
  }
}

TEST(StartedPlugin, GivesNewHostsAModuleOfFiveExtensionMethods) {
  const RegisteringHost host(2013.04);
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(), kModuleLines);
  ASSERT_EQ(host.Records().size(), 1u);
  const Received& module = host.Records()[0];
  ASSERT_TRUE(module.isModule);
  ASSERT_EQ(module.words.size(), 24u);
  EXPECT_EQ(module.words[0], 13u);
  EXPECT_EQ(TextAt(module.words[1]), "PictureVarnellExtensionZVQ");
  EXPECT_EQ(module.words[3], 5u);
  for (std::size_t i = 4; i < 24; ++i) EXPECT_EQ(module.words[i], 0u) << i;
  ExpectMethods(file, module.words[2], 6, kExtendedDeclarations, 20);
}

TEST(StartedPlugin, GivesHosts2012ItsOwnRecord) {
  const RegisteringHost host(2012.0);
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(), ClassExtensionLines("10"));
  ASSERT_EQ(host.Records().size(), 1u);
  const Received& received = host.Records()[0];
  ASSERT_NO_FATAL_FAILURE(ExpectClassWords(received, 10, 4));
  ExpectMethods(file, received.words[9], 6, kDeclarations, 4);
  EXPECT_TRUE(file.Contains(received.address));
  EXPECT_TRUE(file.Contains(received.words[9]));
}

TEST(StartedPlugin, GivesHostsFrom3000OnItsOwnRecordWithTheNewestVersion) {
  const RegisteringHost host(3000.0);
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(), ClassExtensionLines("13"));
  ASSERT_EQ(host.Records().size(), 1u);
  ASSERT_NO_FATAL_FAILURE(ExpectClassWords(host.Records()[0], 13, 4));
  ExpectMethods(file, host.Records()[0].words[9], 6, kDeclarations, 4);
}

TEST(StartedPlugin, GivesOlderHostsFourWordMethods) {
  const RegisteringHost host(2011.04);
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(), ClassExtensionLines("9"));
  ASSERT_EQ(host.Records().size(), 1u);
  const Received& received = host.Records()[0];
  ASSERT_NO_FATAL_FAILURE(ExpectClassWords(received, 9, 4));
  ExpectMethods(file, received.words[9], 4, kDeclarations, 4);
  EXPECT_TRUE(file.Contains(received.address));
  EXPECT_FALSE(file.Contains(received.words[9]));
}

TEST(StartedPlugin, GivesTheOldestHostsNoFlags) {
  const RegisteringHost host(2010.028);
  PluginFile file;
  file.Start();
  ASSERT_EQ(host.Records().size(), 1u);
  ASSERT_NO_FATAL_FAILURE(ExpectClassWords(host.Records()[0], 9, 0));
  ExpectMethods(file, host.Records()[0].words[9], 4, kDeclarations, 0);
}

TEST(StartedPlugin, TreatsAHostWithoutAVersionAsTheOldest) {
  RegisteringHost host(2013.04);
  host.Withdraw("REALGetRBVersion");
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(),
            (Lines{"resolve(REALGetRBVersion)", "resolve(RegisterPluginVersion)",
                   "RegisterPluginVersion(9)", "resolve(PluginRegisterClassExtension)",
                   "PluginRegisterClassExtension"}));
  ASSERT_EQ(host.Records().size(), 1u);
  ASSERT_NO_FATAL_FAILURE(ExpectClassWords(host.Records()[0], 9, 0));
  ExpectMethods(file, host.Records()[0].words[9], 4, kDeclarations, 0);
}

TEST(StartedPlugin, RegistersAlsoWhereNoVersionCanBeAnnounced) {
  RegisteringHost host(2013.04);
  host.Withdraw("RegisterPluginVersion");
  PluginFile file;
  file.Start();
  EXPECT_EQ(host.Lines(), (Lines{"resolve(REALGetRBVersion)", "REALGetRBVersion()",
                                 "resolve(RegisterPluginVersion)", "resolve(PluginRegisterModule)",
                                 "PluginRegisterModule"}));
  ASSERT_EQ(host.Records().size(), 1u);
  EXPECT_EQ(host.Records()[0].words[0], 13u);
}

TEST(StartedPlugin, AsksForTheIdentityOfItsThreadOnce) {
  for (const double version : {0.0, 2012.0, 2013.04, 3000.0}) {
    const RegisteringHost host(version);
    PluginFile file;
    file.Start();
    EXPECT_EQ(file.ThreadIdentityCalls(), 1) << version;
  }
}

struct MissingCase {
  double version;
  const char* entry;
};

TEST(StartedPlugin, RegistersNothingWhereTheRegistrationEntryIsMissing) {
  const MissingCase cases[] = {
      {2013.04, "PluginRegisterModule"},
      {2012.0, "PluginRegisterClassExtension"},
      {2011.04, "PluginRegisterClassExtension"},
      {3000.0, "PluginRegisterClassExtension"},
  };
  for (const MissingCase& row : cases) {
    RegisteringHost host(row.version);
    host.Withdraw(row.entry);
    PluginFile file;
    file.Start();
    EXPECT_TRUE(host.Records().empty()) << row.version;
    EXPECT_EQ(host.Lines().back(), std::string("resolve(") + row.entry + ")") << row.version;
    EXPECT_EQ(host.Calls().size(), 2u) << row.version;
  }
}

}  // namespace
