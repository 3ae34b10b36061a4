// The platform's thread identity, supplied by the process that loads the plug-in. Not for files
// that include the system's own thread header.
#pragma once

extern "C" void* pthread_self();
