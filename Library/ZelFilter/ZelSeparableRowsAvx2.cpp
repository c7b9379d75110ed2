// Eight outputs at a time, two groups of eight interleaved to hide the
// adds' latency; per output the same operations in the same order as the
// plain form.
#include "ZelSeparableRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr long kLanes = 8;

}  // namespace

ZEL_TARGET_AVX2 long zelSymmetricColumnSumAvx2(const float* const* rows, const float* weights,
                                               int radius, float* out, long count) {
    const float* centre = rows[radius];
    const __m256 w0 = _mm256_set1_ps(weights[0]);
    long x = 0;
    for (; x + 2 * kLanes <= count; x += 2 * kLanes) {
        __m256 a = _mm256_mul_ps(w0, _mm256_loadu_ps(centre + x));
        __m256 b = _mm256_mul_ps(w0, _mm256_loadu_ps(centre + x + kLanes));
        for (int k = 1; k <= radius; ++k) {
            const __m256 w = _mm256_set1_ps(weights[k]);
            const float* up = rows[radius - k] + x;
            const float* down = rows[radius + k] + x;
            a = _mm256_add_ps(
                a, _mm256_mul_ps(w, _mm256_add_ps(_mm256_loadu_ps(up), _mm256_loadu_ps(down))));
            b = _mm256_add_ps(b, _mm256_mul_ps(w, _mm256_add_ps(_mm256_loadu_ps(up + kLanes),
                                                                _mm256_loadu_ps(down + kLanes))));
        }
        _mm256_storeu_ps(out + x, a);
        _mm256_storeu_ps(out + x + kLanes, b);
    }
    return x;
}

ZEL_TARGET_AVX2 long zelSymmetricRowSumAvx2(const float* p, const float* weights, int radius,
                                            float* out, long count) {
    const __m256 w0 = _mm256_set1_ps(weights[0]);
    long x = 0;
    for (; x + 2 * kLanes <= count; x += 2 * kLanes) {
        __m256 a = _mm256_mul_ps(w0, _mm256_loadu_ps(p + x));
        __m256 b = _mm256_mul_ps(w0, _mm256_loadu_ps(p + x + kLanes));
        for (int k = 1; k <= radius; ++k) {
            const __m256 w = _mm256_set1_ps(weights[k]);
            const float* left = p + x - k;
            const float* right = p + x + k;
            a = _mm256_add_ps(
                a, _mm256_mul_ps(w, _mm256_add_ps(_mm256_loadu_ps(left), _mm256_loadu_ps(right))));
            b = _mm256_add_ps(b, _mm256_mul_ps(w, _mm256_add_ps(_mm256_loadu_ps(left + kLanes),
                                                                _mm256_loadu_ps(right + kLanes))));
        }
        _mm256_storeu_ps(out + x, a);
        _mm256_storeu_ps(out + x + kLanes, b);
    }
    return x;
}

#endif
