// The address map: for every output pixel the input position to sample, two
// floats (x, y) in pixels per entry, row-major over the frame.
#include <atomic>
#include <cstddef>
#include <new>

#include "ImageZel.h"
#include "Straightlux.h"
#include "StraightluxMapRows.h"
#include "StraightluxSource.h"
#include "ZelBand.h"
#include "zel_heap.h"

namespace {

constexpr size_t kEntryBytes = 2 * sizeof(float);

}  // namespace

void Straightlux::ComputeAddressMap(bool add) {
    if (addressMap != nullptr && (width != savedWidth || height != savedHeight)) {
        ZEL_IMAGE_FREE(kStraightluxSource, addressMap);
        addressMap = nullptr;
        delete scratch;
        scratch = nullptr;
    }
    // A scratch image left from a frame of another size (only possible after a
    // failed map allocation) would be overrun by the magnify pass: replace it.
    if (scratch != nullptr && (scratch->width != width || scratch->height != height)) {
        delete scratch;
        scratch = nullptr;
    }

    const size_t entries = static_cast<size_t>(width) * static_cast<size_t>(height);
    if (addressMap == nullptr) {
        addressMap =
            static_cast<float*>(ZEL_IMAGE_MALLOC(kStraightluxSource, entries * kEntryBytes));
    }
    if (scratch == nullptr) {
        scratch = new (std::nothrow) ImageZel(width, height, 1.0f, nullptr, nullptr);
        // Without its pixels the scratch image is no use; the next frame tries again.
        if (scratch != nullptr && !scratch->hasPixels()) {
            delete scratch;
            scratch = nullptr;
        }
    }
    // No map: the output keeps what the host gave it; the next frame tries again.
    if (addressMap == nullptr) return;
    savedWidth = width;
    savedHeight = height;

    // The rows are filled in bands over the host's processors; each band
    // writes its own rows and counts its own corrections, and the counts are
    // whole numbers, so their sum is the one-thread sum in any order.
    float* map = addressMap;
    const int32_t mapWidth = width;
    if (!add) {
        const InversePlan plan = makeInversePlan();
        std::atomic<int64_t> corrections{0};
        zelForEachBand(height, [&](long first, long last) {
            corrections += fillRemoveRows(plan, mapWidth, map, first, last);
        });
        // The mean number of Newton corrections per pixel.
        iterationTotal = static_cast<double>(corrections.load()) / static_cast<double>(entries);
        return;
    }

    const FloatCoefficients c = makeFloatCoefficients();
    zelForEachBand(height,
                   [&](long first, long last) { fillAddRows(c, mapWidth, map, first, last); });
}
