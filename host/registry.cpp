// Reading and checking registration records. Lists are read by address and stride, because their
// entries have fewer words in version 9.
#include "host/registry.h"

#include <cstring>

#include "host/readable_memory.h"

namespace host {

namespace {

constexpr int kOldVersion = 9;
constexpr int kNewestVersion = 13;
constexpr int kFirstModuleVersion = 11;
constexpr std::uintptr_t kMostEntries = 10000;
// Bits that only stand in a plug-in's source tables; no host knows them.
constexpr std::uintptr_t kSourceFlags = 0xC0000;
constexpr std::uintptr_t kExtendsFlag = 16;

// One entry of a record's list, at most as many words as the newest version has.
struct List {
  const char* what;  // "method"
  const void* address;
  std::uintptr_t count;
  std::size_t oldWords, newWords;
  int flagWord;  // -1: the entries have none
};

class RecordReader {
 public:
  RecordReader(Registration& registration, std::uintptr_t version)
      : registration_(registration), isOld_(version <= kOldVersion) {
    registration_.recordVersion = static_cast<int>(version);
    registration_.methods.clear();
    if (version < kOldVersion || version > kNewestVersion) {
      Problem("The record version " + std::to_string(version) + " is unknown.");
    }
    if (registration_.announcedVersion == 0) {
      Problem("A record came before any record version was announced.");
    } else if (registration_.recordVersion != registration_.announcedVersion) {
      Problem("The record version " + std::to_string(version) + " is not the announced " +
              std::to_string(registration_.announcedVersion) + ".");
    }
  }

  void Problem(std::string sentence) { registration_.problems.push_back(std::move(sentence)); }

  void ReadName(const char* name, const char* of) {
    const auto text = ReadableText(name);
    if (!text || text->empty()) Problem(std::string("The ") + of + " has no readable name.");
    registration_.name = text.value_or("");
  }

  // Whether the list's entries can be read; checks their flag words.
  bool Check(const List& list) {
    if (list.count == 0) return false;
    const std::string name = std::string("The list of ") + list.what + " entries";
    if (list.count > kMostEntries) {
      Problem(name + " is too long.");
      return false;
    }
    const std::size_t stride = Stride(list);
    if (!IsReadable(list.address, stride * list.count)) {
      Problem(name + " cannot be read.");
      return false;
    }
    for (std::uintptr_t i = 0; list.flagWord >= 0 && i < list.count; ++i) {
      CheckFlags(WordAt(list, i, list.flagWord), list.what + (" " + std::to_string(i + 1)));
    }
    return true;
  }

  void CheckFlags(std::uintptr_t flags, const std::string& of) {
    if ((flags & kSourceFlags) != 0) Problem("The flags of " + of + " hold bits no host knows.");
  }

  void ReadMethods(const List& list, bool inModule, bool isShared) {
    if (!Check(list)) return;
    for (std::uintptr_t i = 0; i < list.count; ++i) {
      const std::string of = list.what + (" " + std::to_string(i + 1));
      const auto text = ReadableText(reinterpret_cast<const char*>(WordAt(list, i, 2)));
      if (!text) {
        Problem("The declaration of " + of + " cannot be read.");
        continue;
      }
      std::string error;
      auto declaration = ParseDeclaration(*text, &error);
      if (!declaration) {
        Problem("The declaration \"" + *text + "\" is wrong: " + error);
        continue;
      }
      RegisteredMethod method;
      method.declaration = *declaration;
      method.flags = WordAt(list, i, 3);
      method.isShared = isShared;
      if (inModule) CheckExtension(method, *text);
      AddForms(method, WordAt(list, i, 0), WordAt(list, i, 1), of);
    }
  }

 private:
  // A module's extension methods name their receiver, and their flags say so.
  void CheckExtension(const RegisteredMethod& method, const std::string& text) {
    const auto& parameters = method.declaration.parameters;
    const bool named = !parameters.empty() && parameters[0].extends;
    const bool flagged = (method.flags & kExtendsFlag) != 0;
    if (named && !flagged) Problem("The flags of \"" + text + "\" do not say that it extends.");
    if (!named && flagged) Problem("\"" + text + "\" does not name what it extends.");
  }

  void AddForms(RegisteredMethod method, std::uintptr_t getter, std::uintptr_t setter,
                const std::string& of) {
    if (getter == 0 && setter == 0) Problem("There is no routine for " + of + ".");
    for (const bool isSetter : {false, true}) {
      const std::uintptr_t routine = isSetter ? setter : getter;
      if (routine == 0) continue;
      method.routine = reinterpret_cast<REALroutine>(routine);
      method.isSetter = isSetter;
      if (!IsReadable(method.routine, 1)) Problem("The routine of " + of + " is not in memory.");
      registration_.methods.push_back(method);
    }
  }

  std::size_t Stride(const List& list) const {
    return (isOld_ ? list.oldWords : list.newWords) * sizeof(std::uintptr_t);
  }

  std::uintptr_t WordAt(const List& list, std::uintptr_t entry, int word) const {
    std::uintptr_t value = 0;
    const auto* at = static_cast<const unsigned char*>(list.address) + entry * Stride(list) +
                     static_cast<std::size_t>(word) * sizeof value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }

  Registration& registration_;
  bool isOld_;
};

}  // namespace

int NewestRecordVersion(double hostVersion) {
  if (hostVersion >= 2013.04) return kNewestVersion;
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return kFirstModuleVersion;
  return hostVersion >= 2012.0 ? 10 : kOldVersion;
}

void ReadClassExtension(const REALclassDefinition& definition, Registration& registration) {
  registration.path = Registration::Path::kClassExtension;
  registration.classFlags = definition.flags;
  RecordReader reader(registration, definition.version);
  reader.ReadName(definition.className, "class extension");
  reader.CheckFlags(definition.flags, "the class");
  reader.ReadMethods({"method", definition.methods, definition.methodCount, 4, 6, 3}, false, false);
  reader.ReadMethods(
      {"shared method", definition.sharedMethods, definition.sharedMethodCount, 4, 6, 3}, false,
      true);
  const List others[] = {
      {"property", definition.properties, definition.propertyCount, 10, 12, 3},
      {"shared property", definition.sharedProperties, definition.sharedPropertyCount, 10, 12, 3},
      {"four-word", definition.fourWordEntries, definition.fourWordCount, 2, 4, -1},
      {"five-word", definition.fiveWordEntries, definition.fiveWordCount, 3, 5, -1},
  };
  for (const List& list : others) reader.Check(list);
}

void ReadModule(const REALmoduleDefinition& definition, Registration& registration) {
  registration.path = Registration::Path::kModule;
  registration.classFlags = 0;
  RecordReader reader(registration, definition.version);
  reader.ReadName(definition.name, "module");
  if (definition.version < kFirstModuleVersion) {
    reader.Problem("Modules with extension methods need record version 11 or newer.");
  }
  reader.ReadMethods({"method", definition.methods, definition.methodCount, 6, 6, 3}, true, false);
}

}  // namespace host
