// Row search of the Canny detector's suppression, in a plain and an AVX2
// form that find the same pixel: the first x in from .. count - 1 with
// m[x] > threshold, or count when there is none.
#pragma once

#include "ZelCpu.h"

long zelNextAbove(const float* m, long from, long count, float threshold);

long zelNextAbovePlain(const float* m, long from, long count, float threshold);
#if ZEL_AVX2_FORMS
long zelNextAboveAvx2(const float* m, long from, long count, float threshold);
#endif
