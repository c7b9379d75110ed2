#include "ZelSeparableRows.h"

void zelSymmetricColumnSum(const float* const* rows, const float* weights, int radius, float* out,
                           long count) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelSymmetricColumnSumAvx2(rows, weights, radius, out, count);
#endif
    zelSymmetricColumnSumPlain(rows, weights, radius, out, first, count);
}

void zelSymmetricRowSum(const float* p, const float* weights, int radius, float* out, long count) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelSymmetricRowSumAvx2(p, weights, radius, out, count);
#endif
    zelSymmetricRowSumPlain(p, weights, radius, out, first, count);
}

void zelSymmetricColumnSumPlain(const float* const* rows, const float* weights, int radius,
                                float* out, long first, long count) {
    const float* centre = rows[radius];
    for (long x = first; x < count; ++x) {
        float sum = weights[0] * centre[x];
        for (int k = 1; k <= radius; ++k)
            sum += weights[k] * (rows[radius - k][x] + rows[radius + k][x]);
        out[x] = sum;
    }
}

void zelSymmetricRowSumPlain(const float* p, const float* weights, int radius, float* out,
                             long first, long count) {
    for (long x = first; x < count; ++x) {
        float sum = weights[0] * p[x];
        for (int k = 1; k <= radius; ++k) sum += weights[k] * (p[x - k] + p[x + k]);
        out[x] = sum;
    }
}
