#include "ZelSeparableFilter.h"

#include <cstddef>
#include <vector>

#include "ZelBand.h"
#include "ZelSeparableRows.h"

namespace {

inline long clampIndex(long i, long count) { return i < 0 ? 0 : (i >= count ? count - 1 : i); }

void mp_separable(const FloatImageZel& in, FloatImageZel& out, const ZelSymmetricKernel& kx,
                  const ZelSymmetricKernel& ky, long first, long last) {
    if (first > last) return;
    const long width = in.width();
    const long height = in.height();
    const int rx = kx.radius();
    const int ry = ky.radius();
    std::vector<const float*> rows(static_cast<size_t>(2 * ry + 1));
    // The column sums of one row, with rx repeated edge values either side.
    std::vector<float> padded(static_cast<size_t>(width + 2 * rx));
    float* mid = padded.data() + rx;
    for (long y = first; y <= last; ++y) {
        for (int k = -ry; k <= ry; ++k) rows[k + ry] = in.row(clampIndex(y + k, height));
        zelSymmetricColumnSum(rows.data(), ky.weights.data(), ry, mid, width);
        for (int k = 1; k <= rx; ++k) {
            mid[-k] = mid[0];
            mid[width - 1 + k] = mid[width - 1];
        }
        zelSymmetricRowSum(mid, kx.weights.data(), rx, out.row(y), width);
    }
}

}  // namespace

bool zelSeparableFilter(const FloatImageZel& in, FloatImageZel& out, const ZelSymmetricKernel& kx,
                        const ZelSymmetricKernel& ky) {
    if (!in.hasPixels() || kx.weights.empty() || ky.weights.empty()) return false;
    FloatImageZel copy;
    const FloatImageZel* source = &in;
    if (&in == &out) {
        if (!in.copyTo(copy)) return false;
        source = &copy;
    }
    if (!out.resize(source->width(), source->height())) return false;
    zelForEachBand(source->height(),
                   [&](long first, long last) { mp_separable(*source, out, kx, ky, first, last); });
    return true;
}
