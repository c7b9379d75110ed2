// Banded work through the host's fork service. Kept apart from the rest of
// PluginZel so that programs that never fork link the base class without a host.
#include <spark.h>

#include "PluginZel.h"
#include "ZelBand.h"
#include "ZelHostGlobals.h"

namespace {

constexpr int kForkArgCount = 4;

// Runs in each forked worker with the four pointers handed to sparkMpFork.
void pluginBandEntry(void* fnArg, void* pluginArg, void* countArg, void* procArg) {
    const PluginZel::RowWorker fn = *static_cast<PluginZel::RowWorker*>(fnArg);
    PluginZel* plugin = static_cast<PluginZel*>(pluginArg);
    const long count = *static_cast<long*>(countArg);
    const int processors = *static_cast<int*>(procArg);

    unsigned long offset = 0;
    unsigned long length = 0;
    sparkMpInfo(&offset, &length);
    long first = 0;
    long last = -1;
    zelBandRows(zelBandIndex(offset, length), processors, count, first, last);
    (plugin->*fn)(first, last);
}

}  // namespace

void PluginZel::MultiProcess(RowWorker fn, long count) {
    // The arguments point into this frame; sparkMpFork returns only when
    // every worker has finished.
    sparkMpFork(reinterpret_cast<void (*)()>(pluginBandEntry), kForkArgCount, &fn, this, &count,
                &DLnumProc);
}

void PluginZel::execute_library_mp_func(long first, long last) {
    libraryFunction(libraryData, static_cast<int>(first), static_cast<int>(last));
}

void lib_mp_exec(void* plugin, void (*fn)(void* data, int first, int last), int count, void* data) {
    PluginZel* self = static_cast<PluginZel*>(plugin);
    self->libraryFunction = fn;
    self->libraryData = data;
    self->MultiProcess(&PluginZel::execute_library_mp_func, count);
}
