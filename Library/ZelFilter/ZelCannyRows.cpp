#include "ZelCannyRows.h"

long zelNextAbove(const float* m, long from, long count, float threshold) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return zelNextAboveAvx2(m, from, count, threshold);
#endif
    return zelNextAbovePlain(m, from, count, threshold);
}

long zelNextAbovePlain(const float* m, long from, long count, float threshold) {
    long x = from;
    while (x < count && !(m[x] > threshold)) ++x;
    return x;
}
