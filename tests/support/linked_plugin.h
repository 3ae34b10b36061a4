// The plug-in's inner functions, linked into the test program and started anew.
#pragma once

namespace support {

// Puts every process-wide variable of the linked plug-in back to what it is at load time: no
// resolver, no version, no application kind, every cache slot empty, no yield period. Records that
// registration rewrites stay as they are.
void ResetLinkedPlugin();

// Resets and then gives the plug-in the current runtime's resolver and that version, as its start
// would, but without registering anything. Needs a host::Runtime.
void StartLinkedPlugin(double hostVersion = 2013.04);

}  // namespace support
