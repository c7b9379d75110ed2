#include "ZelBand.h"

#include "ZelHost.h"

namespace {

// Slack added to the share ratio before truncation, so a ratio that comes out
// a hair below a whole number still names the right band.
constexpr double kBandIndexSlack = 0.2;

struct BandJob {
    const ZelRowTask* task;
    long count;
    long bands;
};

// Runs in each of the host's workers.
void runWorkerBand(void* job) {
    const BandJob& work = *static_cast<const BandJob*>(job);
    const ZelRowBand band = zelCurrentBand(work.bands, work.count);
    (*work.task)(band.first, band.last);
}

}  // namespace

long zelBandIndex(unsigned long offset, unsigned long length) {
    if (length == 0) return 0;
    return static_cast<long>(static_cast<double>(offset) / static_cast<double>(length) +
                             kBandIndexSlack);
}

ZelRowBand zelBandRows(long index, long bands, long count) {
    // A processor count below 1 (not yet set by the host) means one band; it
    // would otherwise divide by zero.
    if (bands < 1) bands = 1;
    ZelRowBand band;
    // A worker beyond the band count has no rows of its own.
    if (index < 0 || index >= bands) return band;
    const long per = count / bands;
    band.first = index * per;
    band.last = index == bands - 1 ? count - 1 : band.first + per - 1;
    return band;
}

ZelRowBand zelCurrentBand(long bands, long count) {
    unsigned long offset = 0;
    unsigned long length = 0;
    if (zelHost().share != nullptr) zelHost().share(&offset, &length);
    return zelBandRows(zelBandIndex(offset, length), bands, count);
}

void zelRunBands(long count, const ZelRowTask& task) {
    const ZelHost& host = zelHost();
    const long bands = host.frame.processors < 1 ? 1 : host.frame.processors;
    if (host.fork == nullptr) {
        for (long index = 0; index < bands; ++index) {
            const ZelRowBand band = zelBandRows(index, bands, count);
            task(band.first, band.last);
        }
        return;
    }
    // The job lives in this frame; the host returns only when every worker is done.
    BandJob job{&task, count, bands};
    host.fork(runWorkerBand, &job);
}

void zelBandExecutor(void*, void (*worker)(void* argument, int first, int last), int count,
                     void* argument) {
    zelForEachBand(count, [worker, argument](long first, long last) {
        worker(argument, static_cast<int>(first), static_cast<int>(last));
    });
}
