// Four lanes at a time in double precision (two groups per eight floats),
// the plain form's operations in its order.
#include "ZelRecursiveSteps.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

namespace {

constexpr long kLanes = 4;

}  // namespace

ZEL_TARGET_AVX2 long zelRecursiveStepAvx2(float* x, const double* p1, const double* p2, double* p3,
                                          const ZelRecursiveCoefficients& c, long lanes) {
    const __m256d b = _mm256_set1_pd(c.b);
    const __m256d a1 = _mm256_set1_pd(c.a1);
    const __m256d a2 = _mm256_set1_pd(c.a2);
    const __m256d a3 = _mm256_set1_pd(c.a3);
    long l = 0;
    for (; l + kLanes <= lanes; l += kLanes) {
        __m256d v = _mm256_mul_pd(b, _mm256_cvtps_pd(_mm_loadu_ps(x + l)));
        v = _mm256_add_pd(v, _mm256_mul_pd(a3, _mm256_loadu_pd(p3 + l)));
        v = _mm256_add_pd(v, _mm256_mul_pd(a2, _mm256_loadu_pd(p2 + l)));
        v = _mm256_add_pd(v, _mm256_mul_pd(a1, _mm256_loadu_pd(p1 + l)));
        _mm_storeu_ps(x + l, _mm256_cvtpd_ps(v));
        _mm256_storeu_pd(p3 + l, v);
    }
    return l;
}

#endif
