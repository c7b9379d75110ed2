// The one plug-in object of the loaded library. It is constructed when the
// library is loaded and destroyed when it is unloaded; no entry point creates
// or destroys it.
#pragma once

#include "Straightlux.h"

extern Straightlux Instance;
