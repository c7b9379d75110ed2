#include "ZelGradient.h"

#include <cmath>
#include <cstddef>
#include <vector>

#include "ZelBand.h"
#include "ZelGradientRows.h"

namespace {

// Smoothing (side, centre) in whole weights; scale 1 / (2 (2 side + centre)).
ZelGradientWeights weightsOf(ZelGradientOperator op) {
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

void mp_gradient(const FloatImageZel& in, const ZelGradientWeights& w, FloatImageZel& dx,
                 FloatImageZel& dy, long first, long last) {
    if (first > last) return;
    const long width = in.width();
    const long height = in.height();
    // Column results with one repeated value either side.
    std::vector<float> across(static_cast<size_t>(width + 2));
    std::vector<float> down(static_cast<size_t>(width + 2));
    float* a = across.data() + 1;
    float* d = down.data() + 1;
    for (long y = first; y <= last; ++y) {
        const float* up = in.row(y > 0 ? y - 1 : 0);
        const float* below = in.row(y + 1 < height ? y + 1 : height - 1);
        zelGradientColumns(up, in.row(y), below, w, a, d, width);
        a[-1] = a[0];
        a[width] = a[width - 1];
        d[-1] = d[0];
        d[width] = d[width - 1];
        zelGradientAcross(a, d, w, dx.row(y), dy.row(y), width);
    }
}

bool pairReady(const FloatImageZel& dx, const FloatImageZel& dy, FloatImageZel& out) {
    return dx.hasPixels() && dy.hasPixels() && dx.sameSize(dy) && &out != &dx && &out != &dy &&
           out.resize(dx.width(), dx.height());
}

}  // namespace

bool zelGradient(const FloatImageZel& in, ZelGradientOperator op, FloatImageZel& dx,
                 FloatImageZel& dy) {
    if (!in.hasPixels() || &dx == &in || &dy == &in || &dx == &dy) return false;
    if (!dx.resize(in.width(), in.height()) || !dy.resize(in.width(), in.height())) return false;
    const ZelGradientWeights w = weightsOf(op);
    zelForEachBand(in.height(),
                   [&](long first, long last) { mp_gradient(in, w, dx, dy, first, last); });
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
