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
    const int width = dst->width;
    for (int j = firstRow; j <= lastRow; ++j)
        run.sample(XfmMapPositions{map + 2 * static_cast<size_t>(j) * width}, width, dst->rows[j]);
}
