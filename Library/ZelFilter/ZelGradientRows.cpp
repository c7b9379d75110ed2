#include "ZelGradientRows.h"

#include <cmath>

void zelGradientColumns(const float* up, const float* centre, const float* down,
                        const ZelGradientWeights& w, float* across, float* downDiff, long count) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelGradientColumnsAvx2(up, centre, down, w, across, downDiff, count);
#endif
    zelGradientColumnsPlain(up, centre, down, w, across, downDiff, first, count);
}

void zelGradientAcross(const float* across, const float* downDiff, const ZelGradientWeights& w,
                       float* dx, float* dy, long count) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelGradientAcrossAvx2(across, downDiff, w, dx, dy, count);
#endif
    zelGradientAcrossPlain(across, downDiff, w, dx, dy, first, count);
}

void zelMagnitudeRow(const float* dx, const float* dy, float* out, long count) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelMagnitudeRowAvx2(dx, dy, out, count);
#endif
    zelMagnitudeRowPlain(dx, dy, out, first, count);
}

void zelGradientColumnsPlain(const float* up, const float* centre, const float* down,
                             const ZelGradientWeights& w, float* across, float* downDiff,
                             long first, long count) {
    for (long x = first; x < count; ++x) {
        across[x] = zelAcrossValue(up[x], centre[x], down[x], w);
        downDiff[x] = zelDownValue(up[x], down[x]);
    }
}

void zelGradientAcrossPlain(const float* across, const float* downDiff, const ZelGradientWeights& w,
                            float* dx, float* dy, long first, long count) {
    for (long x = first; x < count; ++x) {
        dx[x] = zelDxValue(across[x - 1], across[x + 1], w);
        dy[x] = zelDyValue(downDiff[x - 1], downDiff[x], downDiff[x + 1], w);
    }
}

void zelMagnitudeRowPlain(const float* dx, const float* dy, float* out, long first, long count) {
    for (long x = first; x < count; ++x) out[x] = zelMagnitudeValue(dx[x], dy[x]);
}
