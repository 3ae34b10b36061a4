// What the plug-in knows of its host, set once when the host loads it and read everywhere.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

extern REALresolver gResolver;                  // null until the host loads the plug-in
extern double rbversion_rbversion;              // host version such as 2013.04; 0.0 if unknown
extern std::int32_t CurrentREALControlVersion;  // definition-record version announced to the host
extern const char* gpartname;                   // name of this plug-in, part of its module's name
