#include "EntryGuard.h"

#include <cstdio>

#include "BuildInfo.h"
#include "SparkApi.h"

void reportEntryFailure(const char* reason) noexcept {
    char message[256];
    std::snprintf(message, sizeof message, "%s stopped: %s.", kPluginName,
                  reason != nullptr ? reason : "unknown failure");
    sparkError(message);
    std::fprintf(stderr, "SPARK_MESSAGE::\t%s\n", message);
}
