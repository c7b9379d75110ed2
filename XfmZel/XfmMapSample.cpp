// Resampling through an address map: every destination pixel samples the
// source at its own map entry, with the point samplers of the current mode.
#include <algorithm>
#include <cstddef>

#include "ImageXfmZel.h"
#include "XfmPointRuns.h"

void ImageXfmZel::sample_map(ImageZel* src, const float* map, ImageZel* dst, int firstRow,
                             int lastRow) {
    if (src == nullptr || map == nullptr || dst == nullptr) return;
    firstRow = std::max(firstRow, 0);
    lastRow = std::min(lastRow, dst->height - 1);
    XfmPointRun run(*this, src);
    double xs[kXfmRunChunk];
    double ys[kXfmRunChunk];
    const int width = dst->width;
    for (int j = firstRow; j <= lastRow; ++j) {
        const float* entry = map + 2 * static_cast<size_t>(j) * width;
        PixelZel* out = dst->rows[j];
        for (int i = 0; i < width; i += kXfmRunChunk) {
            const int count = std::min(kXfmRunChunk, width - i);
            for (int k = 0; k < count; ++k) {
                xs[k] = entry[2 * (i + k)];
                ys[k] = entry[2 * (i + k) + 1];
            }
            run.sample(xs, ys, count, out + i);
        }
    }
}
