// The host that has loaded the faulty plug-in, for faults that call it themselves.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

namespace faulty {

// Set when the plug-in starts.
extern REALresolver gHost;

// The host's entry of that name, null when it has none.
template <typename Entry>
Entry* Get(const char* name) {
  return reinterpret_cast<Entry*>(gHost(name));
}

// Takes or gives back one reference; nothing for null, and where the host lacks the entry.
void Take(REALobject object);
void Give(REALobject object);

bool HasAlpha(REALpicture picture);
// "Width" or "Height"; 0 for null, and where the host cannot tell.
std::int32_t Size(REALpicture picture, const char* property);

}  // namespace faulty
