// Row kernels of the 3x3 gradients, in a plain and an AVX2 form that give the
// same bytes. With u, c, d the rows above, at and below, s the side and m the
// centre weight of the smoothing and k the scale:
//   zelGradientColumns: across[x] = s (u[x] + d[x]) + m c[x], down[x] = d[x] - u[x]
//   zelGradientAcross:  dx[x] = (across[x+1] - across[x-1]) k,
//                       dy[x] = (s (down[x-1] + down[x+1]) + m down[x]) k
//   zelMagnitudeRow:    out[x] = sqrt(dx[x] dx[x] + dy[x] dy[x])
// (across and down may be read at -1 and count.)
#pragma once

#include <cmath>

#include "ZelCpu.h"

struct ZelGradientWeights {
    float side;
    float centre;
    float scale;
};

// The formulas per pixel, shared by the plain forms and by code that needs
// the gradient at a few pixels only (the same bits as the row kernels).
inline float zelAcrossValue(float up, float centre, float down, const ZelGradientWeights& w) {
    return w.side * (up + down) + w.centre * centre;
}
inline float zelDownValue(float up, float down) { return down - up; }
inline float zelDxValue(float acrossLeft, float acrossRight, const ZelGradientWeights& w) {
    return (acrossRight - acrossLeft) * w.scale;
}
inline float zelDyValue(float downLeft, float down, float downRight, const ZelGradientWeights& w) {
    return (w.side * (downLeft + downRight) + w.centre * down) * w.scale;
}
inline float zelMagnitudeValue(float dx, float dy) { return std::sqrt(dx * dx + dy * dy); }

void zelGradientColumns(const float* up, const float* centre, const float* down,
                        const ZelGradientWeights& w, float* across, float* downDiff, long count);
void zelGradientAcross(const float* across, const float* downDiff, const ZelGradientWeights& w,
                       float* dx, float* dy, long count);
void zelMagnitudeRow(const float* dx, const float* dy, float* out, long count);

void zelGradientColumnsPlain(const float* up, const float* centre, const float* down,
                             const ZelGradientWeights& w, float* across, float* downDiff,
                             long first, long count);
void zelGradientAcrossPlain(const float* across, const float* downDiff, const ZelGradientWeights& w,
                            float* dx, float* dy, long first, long count);
void zelMagnitudeRowPlain(const float* dx, const float* dy, float* out, long first, long count);
#if ZEL_AVX2_FORMS
// Each returns the first output it did not compute.
long zelGradientColumnsAvx2(const float* up, const float* centre, const float* down,
                            const ZelGradientWeights& w, float* across, float* downDiff,
                            long count);
long zelGradientAcrossAvx2(const float* across, const float* downDiff, const ZelGradientWeights& w,
                           float* dx, float* dy, long count);
long zelMagnitudeRowAvx2(const float* dx, const float* dy, float* out, long count);
#endif
