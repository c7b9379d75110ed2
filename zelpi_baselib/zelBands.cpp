#include "zelBands.h"

int zelmp_rounded_band(int rows, int workers) {
    const bool negative = rows < 0;
    const long magnitude = negative ? -static_cast<long>(rows) : rows;
    long band = magnitude / workers;
    const long twiceRemainder = 2 * (magnitude % workers);
    // Above one half rounds up; exactly one half goes to the even neighbour.
    if (twiceRemainder > workers || (twiceRemainder == workers && band % 2 == 1)) ++band;
    return static_cast<int>(negative ? -band : band);
}

void zelmp_band_rows(int total, int workers, int worker, int& first, int& last) {
    if (workers <= 1) {
        first = 0;
        last = total - 1;
        return;
    }
    const int band = zelmp_rounded_band(total, workers);
    if (band == 0) {
        // Fewer rows than half a band each: worker 0 does them all.
        first = worker == 0 ? 0 : total;
        last = total - 1;
        return;
    }
    first = worker * band;
    const long end = static_cast<long>(first) + band;
    last = (worker == workers - 1 || end > total) ? total - 1 : static_cast<int>(end - 1);
}

void zelmp_band_span(int start, int end, int workers, int worker, int& lo, int& hi) {
    if (workers < 2) {
        lo = start;
        hi = end;
        return;
    }
    const int band = zelmp_rounded_band(end - start, workers);
    if (band == 0) {
        lo = worker == 0 ? start : end;
        hi = end;
        return;
    }
    // Measured from 0 rather than from start (kept as it stands).
    lo = worker * band;
    const long bandEnd = static_cast<long>(lo) + band;
    hi = (worker == workers - 1 || bandEnd > end) ? end : static_cast<int>(bandEnd);
}
