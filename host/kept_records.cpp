// The process-wide list of kept records.
#include "host/kept_records.h"

#include <vector>

namespace host {

namespace {

std::vector<const void*>& Kept() {
  static auto& kept = *new std::vector<const void*>;
  return kept;
}

}  // namespace

// The record itself is static data of the plug-in; what lies behind its words may be allocated.
void KeepRecord(const REALclassDefinition& definition) {
  for (const void* list :
       {static_cast<const void*>(definition.className), static_cast<const void*>(&definition),
        static_cast<const void*>(definition.properties),
        static_cast<const void*>(definition.methods),
        static_cast<const void*>(definition.fourWordEntries),
        static_cast<const void*>(definition.fiveWordEntries),
        static_cast<const void*>(definition.sharedProperties),
        static_cast<const void*>(definition.sharedMethods)}) {
    Kept().push_back(list);
  }
}

// Everything behind a module record is reached from it.
void KeepRecord(const REALmoduleDefinition* module) { Kept().push_back(module); }

}  // namespace host
