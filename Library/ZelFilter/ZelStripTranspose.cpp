#include "ZelStripTranspose.h"

void zelRowsToStrip(const float* const* rows, long lanes, long width, float* strip) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelRowsToStripAvx2(rows, lanes, width, strip);
#endif
    zelRowsToStripPlain(rows, lanes, first, width, strip);
}

void zelStripToRows(const float* strip, long lanes, long width, float* const* rows) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelStripToRowsAvx2(strip, lanes, width, rows);
#endif
    zelStripToRowsPlain(strip, lanes, first, width, rows);
}

void zelRowsToStripPlain(const float* const* rows, long lanes, long first, long width,
                         float* strip) {
    for (long x = first; x < width; ++x)
        for (long l = 0; l < lanes; ++l) strip[x * lanes + l] = rows[l][x];
}

void zelStripToRowsPlain(const float* strip, long lanes, long first, long width,
                         float* const* rows) {
    for (long l = 0; l < lanes; ++l)
        for (long x = first; x < width; ++x) rows[l][x] = strip[x * lanes + l];
}
