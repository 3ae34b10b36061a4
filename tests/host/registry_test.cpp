#include "host/registry.h"

#include <gtest/gtest.h>

#include <functional>

#include "host/pixel_memory.h"

namespace host {
namespace {

using Words = std::vector<std::uintptr_t>;

std::uintptr_t Word(const void* address) { return reinterpret_cast<std::uintptr_t>(address); }

int gRoutine[2];  // anything with an address

Registration Announced(int version) {
  Registration registration;
  registration.announcedVersion = version;
  return registration;
}

REALclassDefinition Definition(std::uintptr_t version, Words& methods, std::uintptr_t count) {
  REALclassDefinition definition{};
  definition.version = version;
  definition.className = "Picture";
  definition.methods = methods.data();
  definition.methodCount = count;
  definition.flags = 4;
  return definition;
}

TEST(Registry, NewRecordsHaveMethodsOfSixWords) {
  Words methods = {Word(&gRoutine[0]),
                   0,
                   Word("A(x as integer) as picture"),
                   4,
                   0,
                   0,
                   Word(&gRoutine[1]),
                   0,
                   Word("B as boolean"),
                   4,
                   0,
                   0};
  for (const int version : {10, 11, 12, 13}) {
    Registration registration = Announced(version);
    ReadClassExtension(Definition(static_cast<std::uintptr_t>(version), methods, 2), registration);
    EXPECT_EQ(registration.problems, std::vector<std::string>());
    EXPECT_EQ(registration.path, Registration::Path::kClassExtension);
    EXPECT_EQ(registration.recordVersion, version);
    EXPECT_EQ(registration.name, "Picture");
    EXPECT_EQ(registration.classFlags, 4u);
    ASSERT_EQ(registration.methods.size(), 2u);
    EXPECT_EQ(registration.methods[0].declaration.name, "A");
    EXPECT_EQ(registration.methods[1].declaration.name, "B");
    EXPECT_EQ(registration.methods[1].routine, &gRoutine[1]);
    EXPECT_EQ(registration.methods[1].flags, 4u);
  }
}

TEST(Registry, RecordsOfVersionNineHaveMethodsOfFourWords) {
  Words methods = {Word(&gRoutine[0]), 0, Word("A() as picture"), 0,
                   Word(&gRoutine[1]), 0, Word("B as boolean"),   4};
  Registration registration = Announced(9);
  ReadClassExtension(Definition(9, methods, 2), registration);
  EXPECT_EQ(registration.problems, std::vector<std::string>());
  ASSERT_EQ(registration.methods.size(), 2u);
  EXPECT_EQ(registration.methods[1].declaration.name, "B");
  EXPECT_EQ(registration.methods[1].routine, &gRoutine[1]);
  EXPECT_EQ(registration.methods[1].flags, 4u);
}

TEST(Registry, OtherListsOfVersionNineHaveShorterEntries) {
  // Each list ends at a guard page: an entry too long cannot be read.
  struct Row {
    const char* name;
    std::size_t oldWords;
    std::function<void(REALclassDefinition&, void*)> put;
  };
  const Row rows[] = {
      {"property", 10,
       [](REALclassDefinition& d, void* list) { d.properties = list, d.propertyCount = 2; }},
      {"shared property", 10,
       [](REALclassDefinition& d, void* list) {
         d.sharedProperties = list, d.sharedPropertyCount = 2;
       }},
      {"four-word", 2,
       [](REALclassDefinition& d, void* list) { d.fourWordEntries = list, d.fourWordCount = 2; }},
      {"five-word", 3,
       [](REALclassDefinition& d, void* list) { d.fiveWordEntries = list, d.fiveWordCount = 2; }},
  };
  for (const Row& row : rows) {
    const PixelMemory list(2 * row.oldWords * sizeof(void*), Guard::kAfter);
    Words none;
    REALclassDefinition definition = Definition(9, none, 0);
    row.put(definition, list.Data());
    Registration old = Announced(9);
    ReadClassExtension(definition, old);
    EXPECT_EQ(old.problems, std::vector<std::string>()) << row.name;
    definition.version = 13;
    Registration recent = Announced(13);
    ReadClassExtension(definition, recent);
    EXPECT_EQ(recent.problems, std::vector<std::string>{std::string("The list of ") + row.name +
                                                        " entries cannot be read."});
  }
}

TEST(Registry, SettersAndSharedMethodsAreToldApart) {
  Words methods = {Word(&gRoutine[0]), Word(&gRoutine[1]), Word("A as integer"), 0, 0, 0};
  Words shared = {Word(&gRoutine[1]), 0, Word("S() as integer"), 0, 0, 0};
  REALclassDefinition definition = Definition(13, methods, 1);
  definition.sharedMethods = shared.data();
  definition.sharedMethodCount = 1;
  Registration registration = Announced(13);
  ReadClassExtension(definition, registration);
  ASSERT_EQ(registration.methods.size(), 3u);
  EXPECT_FALSE(registration.methods[0].isSetter);
  EXPECT_TRUE(registration.methods[1].isSetter);
  EXPECT_EQ(registration.methods[1].routine, &gRoutine[1]);
  EXPECT_TRUE(registration.methods[2].isShared);
  EXPECT_EQ(registration.problems, std::vector<std::string>());
}

TEST(Registry, AModuleNamesItsReceivers) {
  REALmethodDefinition methods[] = {
      {&gRoutine[0], nullptr, "A(extends ref as Picture, x as integer) as picture", 20, {0, 0}},
      {&gRoutine[1], nullptr, "B(extends ref as Picture, ) as picture", 20, {0, 0}},
  };
  REALmoduleDefinition module{};
  module.version = 13;
  module.name = "Extensions";
  module.methods = methods;
  module.methodCount = 2;
  Registration registration = Announced(13);
  ReadModule(module, registration);
  EXPECT_EQ(registration.problems, std::vector<std::string>());
  EXPECT_EQ(registration.path, Registration::Path::kModule);
  EXPECT_EQ(registration.name, "Extensions");
  ASSERT_EQ(registration.methods.size(), 2u);
  EXPECT_TRUE(registration.methods[1].declaration.parameters[0].extends);
  EXPECT_EQ(registration.methods[1].flags, 20u);

  methods[0].flags = 4;
  methods[1].declaration = "B() as picture";
  Registration wrong = Announced(13);
  ReadModule(module, wrong);
  EXPECT_EQ(wrong.problems.size(), 2u);
  module.version = 10;
  Registration old = Announced(10);
  methods[0].flags = 20;
  methods[1].flags = 4;
  ReadModule(module, old);
  EXPECT_EQ(old.problems, std::vector<std::string>{
                              "Modules with extension methods need record version 11 or newer."});
}

TEST(Registry, EveryFaultIsOneSentence) {
  struct Row {
    const char* sentence;
    std::function<void(REALclassDefinition&, Words&, Registration&)> spoil;
  };
  const Row rows[] = {
      {"The record version 12 is not the announced 13.",
       [](auto& d, auto&, auto&) { d.version = 12; }},
      {"A record came before any record version was announced.",
       [](auto&, auto&, auto& r) { r.announcedVersion = 0; }},
      {"The class extension has no readable name.",
       [](auto& d, auto&, auto&) { d.className = reinterpret_cast<const char*>(16); }},
      {"The class extension has no readable name.",
       [](auto& d, auto&, auto&) { d.className = ""; }},
      {"The flags of the class hold bits no host knows.",
       [](auto& d, auto&, auto&) { d.flags = 0x40000; }},
      {"The flags of method 1 hold bits no host knows.",
       [](auto&, auto& m, auto&) { m[3] = 0x80004; }},
      {"The declaration of method 1 cannot be read.", [](auto&, auto& m, auto&) { m[2] = 16; }},
      {"The declaration \"A(\" is wrong: A parameter has no name.",
       [](auto&, auto& m, auto&) { m[2] = Word("A("); }},
      {"There is no routine for method 1.", [](auto&, auto& m, auto&) { m[0] = 0; }},
      {"The routine of method 1 is not in memory.", [](auto&, auto& m, auto&) { m[0] = 16; }},
      {"The list of method entries cannot be read.",
       [](auto& d, auto&, auto&) { d.methods = nullptr; }},
      {"The list of method entries is too long.",
       [](auto& d, auto&, auto&) { d.methodCount = static_cast<std::uintptr_t>(-1); }},
  };
  for (const Row& row : rows) {
    Words methods = {Word(&gRoutine[0]), 0, Word("A() as picture"), 4, 0, 0};
    REALclassDefinition definition = Definition(13, methods, 1);
    Registration registration = Announced(13);
    row.spoil(definition, methods, registration);
    ReadClassExtension(definition, registration);
    EXPECT_EQ(registration.problems, std::vector<std::string>{row.sentence});
  }
}

TEST(Registry, EveryHostVersionKnowsItsNewestRecords) {
  const std::pair<double, int> rows[] = {
      {0.0, 9},        {2011.9999, 9}, {2012.0, 10},    {2012.9999, 10}, {2013.0, 11},
      {2013.0299, 11}, {2013.03, 12},  {2013.0399, 12}, {2013.04, 13},   {3000.0, 13}};
  for (const auto& [version, newest] : rows) {
    EXPECT_EQ(NewestRecordVersion(version), newest) << version;
  }
}

TEST(Registry, UnknownRecordVersionsAreAProblem) {
  for (const int version : {0, 8, 14}) {
    Words methods;
    Registration registration = Announced(version);
    ReadClassExtension(Definition(static_cast<std::uintptr_t>(version), methods, 0), registration);
    EXPECT_EQ(registration.problems.empty() ? "" : registration.problems[0],
              "The record version " + std::to_string(version) + " is unknown.");
  }
}

}  // namespace
}  // namespace host
