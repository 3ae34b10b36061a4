// Registers a class-extension record in the layout that the host's version knows.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

// Rewrites the flag words of the record, of its methods and of its properties for a host of that
// version: bits 18 and 19 become bits 2 and 3 on hosts from 2010.029 on, and nothing on older ones.
void RewriteFlags(REALclassDefinition& definition, double hostVersion);

// Registers the record as it is, with CurrentREALControlVersion as its version. The host keeps it.
void RegisterClassExtension(REALclassDefinition& definition);

// Replaces the record's words by those that hosts below 2012.0 expect: version 9 and shorter
// entries behind every list. False, with the record unchanged but for the second words of its
// four-word entries, when memory is short. The new lists belong to the host. Not for a record that
// was converted before.
bool ConvertForOldHost(REALclassDefinition& definition);

// A property as hosts below 2012.0 know it.
struct OldProperty {
  std::uintptr_t words[10];
};

// A new array of `count` shortened properties, which the caller owns. Null for a null list, a count
// of 0, and when memory is short.
OldProperty* FixProperties(const REALproperty* properties, std::uintptr_t count);
