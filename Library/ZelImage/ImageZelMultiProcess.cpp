// Kept apart from the rest of ImageZel: it references the host's fork service,
// which only the plug-in module resolves, so programs that never fork can link
// the image type without a host.
#include <spark.h>

#include "ImageZel.h"
#include "ZelBand.h"
#include "ZelHostGlobals.h"

namespace {

using RowWorker = void (ImageZel::*)(long first, long last);

// Runs in each forked worker with the four pointers handed to sparkMpFork.
void imageBandEntry(void* fnArg, void* imageArg, void* countArg, void* procArg) {
    const RowWorker fn = *static_cast<RowWorker*>(fnArg);
    ImageZel* image = static_cast<ImageZel*>(imageArg);
    const long count = *static_cast<long*>(countArg);
    const int processors = *static_cast<int*>(procArg);

    unsigned long offset = 0;
    unsigned long length = 0;
    sparkMpInfo(&offset, &length);
    long first = 0;
    long last = -1;
    zelBandRows(zelBandIndex(offset, length), processors, count, first, last);
    (image->*fn)(first, last);
}

constexpr int kForkArgCount = 4;

}  // namespace

void ImageZel::MultiProcess(void (ImageZel::*fn)(long first, long last), long count) {
    // The arguments are pointers into this frame; sparkMpFork returns only
    // when every worker has finished.
    sparkMpFork(reinterpret_cast<void (*)()>(imageBandEntry), kForkArgCount, &fn, this, &count,
                &DLnumProc);
}
