#include "PluginInstance.h"

#include "HostServices.h"

namespace {

// The framework reaches the host through ZelHost from the moment the library
// is loaded, before any entry point runs.
const bool kHostServicesInstalled = (installHostServices(), true);

}  // namespace

Straightlux Instance;
