// Releases a QuickDraw pixel map through a function that is found at run time.
#pragma once

#include "platform/bundles.h"

struct PixMap;

// Does nothing when the function cannot be found; the search is then repeated at the next call.
void UnlockPixels(PixMap** pixMap);

// What the search found, kept for the life of the process; null until then.
extern CFBundleRef gApplicationServices;
extern void (*pUnlockPixels)(PixMap** pixMap);
