// What a plug-in registered with the host: by which path, with which records, and the methods in
// it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/declaration.h"
#include "plugin/host_interface.h"

namespace host {

struct RegisteredMethod {
  REALroutine routine = nullptr;
  Declaration declaration;
  std::uintptr_t flags = 0;
  bool isSetter = false;  // of a class extension: the routine of the entry's assigns form
  bool isShared = false;  // from the list of shared methods, which have no receiver
};

struct Registration {
  enum class Path { kNone, kClassExtension, kModule };
  Path path = Path::kNone;
  int announcedVersion = 0;  // "RegisterPluginVersion"; 0 when it was not called
  int recordVersion = 0;     // in the record
  std::string name;          // class or module
  std::uintptr_t classFlags = 0;
  std::vector<RegisteredMethod> methods;
  int calls = 0;                      // registration calls received
  std::vector<std::string> problems;  // what was wrong with a record, one sentence each
};

// The newest record version that a host of that version knows; every host knows the older ones.
int NewestRecordVersion(double hostVersion);

// Read the records as a host of that record version does (version 9: the older, shorter entries).
// The methods replace those of an earlier record; problems are added.
void ReadClassExtension(const REALclassDefinition& definition, Registration& registration);
void ReadModule(const REALmoduleDefinition& definition, Registration& registration);

}  // namespace host
