// Eight outputs at a time, the plain forms' operations in their order (the
// square root is correctly rounded in both).
#include "ZelGradientRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr long kLanes = 8;

}  // namespace

ZEL_TARGET_AVX2 long zelGradientColumnsAvx2(const float* up, const float* centre, const float* down,
                                            const ZelGradientWeights& w, float* across,
                                            float* downDiff, long count) {
    const __m256 side = _mm256_set1_ps(w.side);
    const __m256 middle = _mm256_set1_ps(w.centre);
    long x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        const __m256 u = _mm256_loadu_ps(up + x);
        const __m256 d = _mm256_loadu_ps(down + x);
        const __m256 c = _mm256_loadu_ps(centre + x);
        _mm256_storeu_ps(across + x, _mm256_add_ps(_mm256_mul_ps(side, _mm256_add_ps(u, d)),
                                                   _mm256_mul_ps(middle, c)));
        _mm256_storeu_ps(downDiff + x, _mm256_sub_ps(d, u));
    }
    return x;
}

ZEL_TARGET_AVX2 long zelGradientAcrossAvx2(const float* across, const float* downDiff,
                                           const ZelGradientWeights& w, float* dx, float* dy,
                                           long count) {
    const __m256 side = _mm256_set1_ps(w.side);
    const __m256 middle = _mm256_set1_ps(w.centre);
    const __m256 scale = _mm256_set1_ps(w.scale);
    long x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        const __m256 diff =
            _mm256_sub_ps(_mm256_loadu_ps(across + x + 1), _mm256_loadu_ps(across + x - 1));
        _mm256_storeu_ps(dx + x, _mm256_mul_ps(diff, scale));
        const __m256 sides =
            _mm256_add_ps(_mm256_loadu_ps(downDiff + x - 1), _mm256_loadu_ps(downDiff + x + 1));
        const __m256 sum = _mm256_add_ps(_mm256_mul_ps(side, sides),
                                         _mm256_mul_ps(middle, _mm256_loadu_ps(downDiff + x)));
        _mm256_storeu_ps(dy + x, _mm256_mul_ps(sum, scale));
    }
    return x;
}

ZEL_TARGET_AVX2 long zelMagnitudeRowAvx2(const float* dx, const float* dy, float* out, long count) {
    long x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        const __m256 a = _mm256_loadu_ps(dx + x);
        const __m256 b = _mm256_loadu_ps(dy + x);
        _mm256_storeu_ps(out + x,
                         _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(a, a), _mm256_mul_ps(b, b))));
    }
    return x;
}

#endif
