// What the plug-in registers, and with which words, at each version of the host.
#include <cstdio>

#include "host/registry.h"
#include "tool/check_bench.h"

namespace tool {
namespace {

using host::Registration;
using Path = Registration::Path;

struct Version {
  double number;
  int record;
  Path path;
};
constexpr Version kVersions[] = {
    {0, 9, Path::kClassExtension},
    {2010.028, 9, Path::kClassExtension},
    {2010.029, 9, Path::kClassExtension},
    {2011.04, 9, Path::kClassExtension},
    {2012, 10, Path::kClassExtension},
    {2012.9999, 10, Path::kClassExtension},
    {2013, 11, Path::kModule},
    {2013.0299, 11, Path::kModule},
    {2013.03, 12, Path::kModule},
    {2013.0399, 12, Path::kModule},
    {2013.04, 13, Path::kModule},
    {2999.99, 13, Path::kModule},
    {3000, 13, Path::kClassExtension},
};

std::string VersionText(double version) {
  char text[40];
  std::snprintf(text, sizeof text, "version %.10g: ", version);
  return text;
}

// Goes through the registrations at all versions.
void ForEachVersion(const CheckContext& context,
                    const std::function<void(const Version&, const Registration&,
                                             const std::string& where)>& judge) {
  for (const Version& version : kVersions) {
    Bench bench(context, HostOf(host::ApplicationKind::kDesktop, version.number));
    judge(version, bench.Host().Registered(), VersionText(version.number));
  }
}

void RegistersOnce(const CheckContext& context) {
  ForEachVersion(context, [](const Version&, const Registration& found, const std::string& where) {
    Require(found.calls == 1,
            where + "it registered " + std::to_string(found.calls) + " times, not once.");
    if (!found.problems.empty()) throw CheckFailed(where + found.problems[0]);
  });
}

constexpr const char* kMethods[] = {"DrawPictureFZVQ", "ScaleZVQ", "ScaleImageAndMaskZVQ",
                                    "ScalingZVQ", "BlurZVQ"};

void RequireFiveMethods(const Registration& found, const std::string& where) {
  Require(found.methods.size() == 5,
          where + std::to_string(found.methods.size()) + " methods are registered, not 5.");
  for (std::size_t i = 0; i < 5; ++i) {
    const std::string& name = found.methods[i].declaration.name;
    Require(name == kMethods[i], where + "method " + std::to_string(i + 1) + " is " + name +
                                     ", not " + kMethods[i] + ".");
    Require(!found.methods[i].isSetter && !found.methods[i].isShared,
            where + name + " is registered as a setter or as shared.");
  }
}

void RegistersByModule(const CheckContext& context) {
  ForEachVersion(
      context, [](const Version& version, const Registration& found, const std::string& where) {
        if (version.path != Path::kModule) return;
        Require(found.path == Path::kModule, where + "no module is registered.");
        Require(found.name.starts_with("Picture") && found.name.ends_with("ExtensionZVQ"),
                where + "the module is named " + found.name + ".");
        RequireFiveMethods(found, where);
        for (const host::RegisteredMethod& method : found.methods) {
          const auto& parameters = method.declaration.parameters;
          Require(!parameters.empty() && parameters[0].extends && parameters[0].name == "ref" &&
                      parameters[0].type == host::Type::kPicture,
                  where + method.declaration.name + " does not extend Picture.");
        }
      });
}

void RegistersClassExtension(const CheckContext& context) {
  ForEachVersion(
      context, [](const Version& version, const Registration& found, const std::string& where) {
        if (version.path != Path::kClassExtension) return;
        Require(found.path == Path::kClassExtension, where + "no class extension is registered.");
        Require(found.name == "Picture", where + "the extended class is " + found.name + ".");
        RequireFiveMethods(found, where);
      });
}

void AnnouncesItsRecordVersion(const CheckContext& context) {
  ForEachVersion(
      context, [](const Version& version, const Registration& found, const std::string& where) {
        Require(found.announcedVersion == version.record,
                where + std::to_string(found.announcedVersion) + " is announced, not " +
                    std::to_string(version.record) + ".");
        Require(found.recordVersion == version.record, where + std::to_string(found.recordVersion) +
                                                           " stands in the record, not " +
                                                           std::to_string(version.record) + ".");
      });
}

void FlagsFollowTheVersion(const CheckContext& context) {
  ForEachVersion(
      context, [](const Version& version, const Registration& found, const std::string& where) {
        const std::uintptr_t known = version.number >= 2010.029 ? 4 : 0;
        const bool asModule = version.path == Path::kModule;
        Require(asModule || found.classFlags == known, where + "the flags of the class are wrong.");
        for (const host::RegisteredMethod& method : found.methods) {
          Require(method.flags == (known | (asModule ? 16u : 0u)),
                  where + "the flags of " + method.declaration.name + " are " +
                      std::to_string(method.flags) + ".");
        }
      });
}

struct Expected {
  const char* name;
  host::Type result;
  std::vector<std::pair<host::Type, const char*>> parameters;  // with their defaults
};

const std::vector<Expected>& Declared() {
  using host::Type;
  static const std::vector<Expected> declared = {
      {"DrawPictureFZVQ",
       Type::kBoolean,
       {{Type::kPicture, ""},
        {Type::kDouble, ""},
        {Type::kDouble, ""},
        {Type::kDouble, "1.0"},
        {Type::kInteger, "0"}}},
      {"ScaleZVQ",
       Type::kPicture,
       {{Type::kInteger, ""},
        {Type::kInteger, ""},
        {Type::kBoolean, "false"},
        {Type::kInteger, "0"}}},
      {"ScaleImageAndMaskZVQ",
       Type::kPicture,
       {{Type::kInteger, ""},
        {Type::kInteger, ""},
        {Type::kBoolean, "false"},
        {Type::kInteger, "0"}}},
      {"ScalingZVQ",
       Type::kPicture,
       {{Type::kInteger, ""}, {Type::kInteger, ""}, {Type::kInteger, ""}, {Type::kInteger, "0"}}},
      {"BlurZVQ", Type::kPicture, {{Type::kDouble, ""}, {Type::kInteger, "0"}}},
  };
  return declared;
}

void DeclaresItsMethods(const CheckContext& context) {
  Bench bench(context, HostOf(host::ApplicationKind::kDesktop, 2012.0));
  for (const Expected& expected : Declared()) {
    const host::RegisteredMethod* found = nullptr;
    for (const auto& method : bench.Host().Registered().methods) {
      if (method.declaration.name == expected.name) found = &method;
    }
    const std::string name = expected.name;
    Require(found != nullptr, name + " is not registered.");
    const host::Declaration& declaration = found->declaration;
    Require(declaration.result == expected.result, name + " has another result type.");
    Require(declaration.parameters.size() == expected.parameters.size(),
            name + " has another number of parameters.");
    for (std::size_t i = 0; i < expected.parameters.size(); ++i) {
      const host::Parameter& parameter = declaration.parameters[i];
      Require(parameter.type == expected.parameters[i].first &&
                  parameter.defaultValue.value_or("") == expected.parameters[i].second,
              name + " declares \"" + parameter.name + "\" with another type or default.");
    }
  }
}

void StartsWithoutAnyEntry(const CheckContext& context) {
  for (const double version : {2010.0, 2012.0, 2013.04}) {
    for (const std::string& entry : host::Runtime::EntryNames()) {
      Bench bench(context, HostOf(host::ApplicationKind::kDesktop, version),
                  [&](host::Runtime& runtime) { runtime.Withhold(entry); });
      const Registration& found = bench.Host().Registered();
      const std::string where = VersionText(version) + "without " + entry + " ";
      const std::string needed =
          version >= 2013.0 ? "PluginRegisterModule" : "PluginRegisterClassExtension";
      const int calls = entry == needed ? 0 : 1;
      Require(found.calls == calls || entry == "REALGetRBVersion",
              where + "it registered " + std::to_string(found.calls) + " times, not " +
                  std::to_string(calls) + ".");
      // Unknown is old.
      Require(entry != "REALGetRBVersion" ||
                  (found.path == Path::kClassExtension && found.announcedVersion == 9),
              where + "it does not register as on an old host.");
    }
  }
}

void StartsTwice(const CheckContext& context) {
  for (const Version& version : kVersions) {
    host::Runtime runtime(HostOf(host::ApplicationKind::kDesktop, version.number));
    const host::PluginLibrary first(runtime, context.plugin);
    const Registration before = runtime.Registered();
    const host::PluginLibrary second(runtime, context.plugin);
    const Registration& after = runtime.Registered();
    const std::string where = VersionText(version.number) + "at the second start ";
    Require(after.problems.empty() && after.path == before.path &&
                after.classFlags == before.classFlags &&
                after.methods.size() == before.methods.size(),
            where + "another record is registered.");
    for (std::size_t i = 0; i < before.methods.size(); ++i) {
      Require(after.methods[i].declaration.text == before.methods[i].declaration.text &&
                  after.methods[i].flags == before.methods[i].flags,
              where + before.methods[i].declaration.name + " is registered differently.");
    }
  }
}

constexpr Check kChecks[] = {
    {"registers-once", "At every host version the plug-in registers exactly once, without faults.",
     RegistersOnce},
    {"registers-five-methods-by-module",
     "From 2013.0 to below 3000.0 a module extends Picture by the five methods.",
     RegistersByModule},
    {"registers-class-extension-on-old-hosts",
     "Below 2013.0 and from 3000.0 on, a class extension of Picture has the five methods.",
     RegistersClassExtension},
    {"announces-its-record-version",
     "The record version that fits the host is announced and stands in the record.",
     AnnouncesItsRecordVersion},
    {"flags-follow-the-version",
     "The flags are 4 from 2010.029 on and 0 before, with 16 added in a module.",
     FlagsFollowTheVersion},
    {"declares-its-methods", "Each method is declared with its types, defaults and result.",
     DeclaresItsMethods},
    {"starts-without-any-entry",
     "The plug-in starts when the host withholds any one entry, and registers where it can.",
     StartsWithoutAnyEntry},
    {"second-start-registers-the-same",
     "A second start in the same process registers the same once more.", StartsTwice},
};

}  // namespace

std::span<const Check> RegistrationChecks() { return kChecks; }

}  // namespace tool
