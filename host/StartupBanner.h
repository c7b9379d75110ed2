// The start-up banner on standard output and the check that the host offers
// enough image buffers. Too few buffers are reported on the console and on the
// host's message line, and turn processing off (no_buffers := 1).
#pragma once

#include "SparkApi.h"

void printStartupBanner(SparkInfoStruct info, const char* pluginName, int buffersNeeded8,
                        int buffersNeeded12, const char* minorVersion, int buildKind);
