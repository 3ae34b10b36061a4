// The record by which the host learns of the five methods.
#pragma once

#include "plugin/host_interface.h"

// Registration rewrites it in place and hands it to the host, which keeps it for the life of the
// process.
extern REALclassDefinition pictureClass;
