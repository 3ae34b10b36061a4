// Registration records that plug-ins handed over. They stay with the host for the life of the
// process, also when the plug-in is unloaded, and a leak checker finds them here.
#pragma once

#include "plugin/host_interface.h"

namespace host {

void KeepRecord(const REALclassDefinition& definition);
void KeepRecord(const REALmoduleDefinition* module);

}  // namespace host
