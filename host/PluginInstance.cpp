#include "PluginInstance.h"

Straightlux Instance;
