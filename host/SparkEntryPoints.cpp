// The entry points with nothing to do beyond answering the host.
#include "SparkEntryPoints.h"

#include "EntryGuard.h"
#include "FrameImages.h"
#include "PluginInstance.h"

namespace {

constexpr int kInputClipCount = 1;

}  // namespace

// The frame pictures kept between frames are given back at the end of the session.
void SparkUnInitialise(SparkInfoStruct info) {
    guardedCall([&info] {
        sparkSaveSetup(info.Name);
        frameImages().releaseAll();
        Instance.input.image = nullptr;
        Instance.output.image = nullptr;
    });
}

int SparkProcessStart(SparkInfoStruct) { return 1; }

void SparkMemoryTempBuffers(void) {}

int SparkClips(void) { return kInputClipCount; }
