// Eight magnitudes compared at a time; the first lane above wins.
#include "ZelCannyRows.h"

#if ZEL_AVX2_FORMS

#include <immintrin.h>

ZEL_TARGET_AVX2 long zelNextAboveAvx2(const float* m, long from, long count, float threshold) {
    constexpr long kLanes = 8;
    const __m256 t = _mm256_set1_ps(threshold);
    long x = from;
    for (; x + kLanes <= count; x += kLanes) {
        const int above = _mm256_movemask_ps(_mm256_cmp_ps(_mm256_loadu_ps(m + x), t, _CMP_GT_OQ));
        if (above != 0) return x + __builtin_ctz(static_cast<unsigned>(above));
    }
    return zelNextAbovePlain(m, x, count, threshold);
}

#endif
