// The address map: for every output pixel the input position to sample, two
// floats (x, y) in pixels per entry, row-major over the frame.
#include <cstddef>
#include <new>

#include "ImageZel.h"
#include "Straightlux.h"
#include "StraightluxSource.h"
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

    float* entry = addressMap;
    if (!add) {
        // Remove: output (i, j) shows the input point that the model carries to (i, j).
        iterationTotal = 0.0;
        for (int32_t j = 0; j < height; ++j) {
            for (int32_t i = 0; i < width; ++i, entry += 2) {
                tagDPT2 source = {0.0, 0.0};
                if (MapDistortedToUndistorted(
                        tagDPT2{static_cast<double>(i), static_cast<double>(j)}, source) < 0) {
                    // A failed inverse samples the top-left pixel.
                    source = tagDPT2{0.0, 0.0};
                }
                entry[0] = static_cast<float>(source.x);
                entry[1] = static_cast<float>(source.y);
            }
        }
        // The mean number of Newton corrections per pixel.
        iterationTotal /= static_cast<double>(entries);
        return;
    }

    // Add: output (i, j) shows the input at the model's image of (i, j).
    const FloatCoefficients c = makeFloatCoefficients();
    for (int32_t j = 0; j < height; ++j) {
        for (int32_t i = 0; i < width; ++i, entry += 2) {
            mapUndistortedToDistortedFloat(c, static_cast<float>(i), static_cast<float>(j),
                                           entry[0], entry[1]);
        }
    }
}
