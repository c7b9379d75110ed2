#include "ZelGradient.h"

#include <cmath>
#include <cstddef>
#include <vector>

#include "ZelBand.h"
#include "ZelGradientRows.h"

namespace {

inline long clampIndex(long i, long count) { return i < 0 ? 0 : (i >= count ? count - 1 : i); }

void mp_gradient(const FloatImageZel& in, const ZelGradientWeights& w, FloatImageZel& dx,
                 FloatImageZel& dy, FloatImageZel* magnitude, long first, long last) {
    if (first > last) return;
    std::vector<float> across(static_cast<size_t>(in.width()) + 2);
    std::vector<float> down(static_cast<size_t>(in.width()) + 2);
    for (long y = first; y <= last; ++y)
        zelGradientRow(in, w, y, dx.row(y), dy.row(y),
                       magnitude != nullptr ? magnitude->row(y) : nullptr, across.data(),
                       down.data());
}

bool pairReady(const FloatImageZel& dx, const FloatImageZel& dy, FloatImageZel& out) {
    return dx.hasPixels() && dy.hasPixels() && dx.sameSize(dy) && &out != &dx && &out != &dy &&
           out.resize(dx.width(), dx.height());
}

}  // namespace

// Smoothing (side, centre) in whole weights; scale 1 / (2 (2 side + centre)).
ZelGradientWeights zelGradientWeights(ZelGradientOperator op) {
    float side = 0.0f;
    float centre = 1.0f;
    switch (op) {
        case ZelGradientOperator::kCentral:
            break;
        case ZelGradientOperator::kPrewitt:
            side = 1.0f;
            break;
        case ZelGradientOperator::kSobel:
            side = 1.0f;
            centre = 2.0f;
            break;
        case ZelGradientOperator::kScharr:
            side = 3.0f;
            centre = 10.0f;
            break;
    }
    return ZelGradientWeights{side, centre, 1.0f / (2.0f * (2.0f * side + centre))};
}

// The column results get one repeated value either side (replicate border).
void zelGradientRow(const FloatImageZel& in, const ZelGradientWeights& w, long y, float* dx,
                    float* dy, float* magnitude, float* across, float* down) {
    const long width = in.width();
    const long height = in.height();
    float* a = across + 1;
    float* d = down + 1;
    zelGradientColumns(in.row(clampIndex(y - 1, height)), in.row(y),
                       in.row(clampIndex(y + 1, height)), w, a, d, width);
    a[-1] = a[0];
    a[width] = a[width - 1];
    d[-1] = d[0];
    d[width] = d[width - 1];
    zelGradientAcross(a, d, w, dx, dy, width);
    if (magnitude != nullptr) zelMagnitudeRow(dx, dy, magnitude, width);
}

void zelGradientAt(const FloatImageZel& in, const ZelGradientWeights& w, long x, long y, float& dx,
                   float& dy, float& magnitude) {
    const long width = in.width();
    const long height = in.height();
    const float* up = in.row(clampIndex(y - 1, height));
    const float* centre = in.row(y);
    const float* below = in.row(clampIndex(y + 1, height));
    float across[3];
    float downDiff[3];
    for (int i = 0; i < 3; ++i) {
        const long c = clampIndex(x - 1 + i, width);
        across[i] = zelAcrossValue(up[c], centre[c], below[c], w);
        downDiff[i] = zelDownValue(up[c], below[c]);
    }
    dx = zelDxValue(across[0], across[2], w);
    dy = zelDyValue(downDiff[0], downDiff[1], downDiff[2], w);
    magnitude = zelMagnitudeValue(dx, dy);
}

bool zelGradient(const FloatImageZel& in, ZelGradientOperator op, FloatImageZel& dx,
                 FloatImageZel& dy, FloatImageZel* magnitude) {
    if (!in.hasPixels() || &dx == &in || &dy == &in || &dx == &dy) return false;
    if (magnitude != nullptr && (magnitude == &in || magnitude == &dx || magnitude == &dy))
        return false;
    if (!dx.resize(in.width(), in.height()) || !dy.resize(in.width(), in.height())) return false;
    if (magnitude != nullptr && !magnitude->resize(in.width(), in.height())) return false;
    const ZelGradientWeights w = zelGradientWeights(op);
    zelForEachBand(in.height(), [&](long first, long last) {
        mp_gradient(in, w, dx, dy, magnitude, first, last);
    });
    return true;
}

bool zelGradientMagnitude(const FloatImageZel& dx, const FloatImageZel& dy,
                          FloatImageZel& magnitude) {
    if (!pairReady(dx, dy, magnitude)) return false;
    zelForEachBand(dx.height(), [&](long first, long last) {
        for (long y = first; y <= last; ++y)
            zelMagnitudeRow(dx.row(y), dy.row(y), magnitude.row(y), dx.width());
    });
    return true;
}

bool zelGradientDirection(const FloatImageZel& dx, const FloatImageZel& dy,
                          FloatImageZel& direction) {
    if (!pairReady(dx, dy, direction)) return false;
    zelForEachBand(dx.height(), [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const float* gx = dx.row(y);
            const float* gy = dy.row(y);
            float* out = direction.row(y);
            // In double and rounded to float: the same on every processor
            // count; only the C library's atan2 could move a last bit.
            for (long x = 0; x < dx.width(); ++x)
                out[x] = static_cast<float>(
                    std::atan2(static_cast<double>(gy[x]), static_cast<double>(gx[x])));
        }
    });
    return true;
}
