// The entry points with nothing to do beyond answering the host.
#include "SparkEntryPoints.h"

#include "EntryGuard.h"

namespace {

constexpr int kInputClipCount = 1;

}  // namespace

void SparkUnInitialise(SparkInfoStruct info) {
    guardedCall([&info] { sparkSaveSetup(info.Name); });
}

int SparkProcessStart(SparkInfoStruct) { return 1; }

void SparkMemoryTempBuffers(void) {}

int SparkClips(void) { return kInputClipCount; }
