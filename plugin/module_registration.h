// Registers the methods of a class-extension record as extension methods of a module.
#pragma once

#include "plugin/host_interface.h"

// One module method for each setter and each implementation of the record, in the record's order.
// The module is named after the class, the plug-in and "ExtensionZVQ" (at most 99 bytes). The host
// keeps the module's record and everything in it. Registers nothing when there are no methods or
// memory is short.
void RegisterModule(const REALclassDefinition& definition);
