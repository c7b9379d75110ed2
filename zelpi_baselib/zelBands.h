// Band arithmetic of the executor: how rows are shared among N workers. A band
// is total / N rounded to the nearest integer, ties to even (10 rows over 4
// workers: bands of 2, the last worker takes the rest), computed in integers so
// that it never depends on the floating-point rounding mode.
#pragma once

// rows / workers rounded to nearest, ties to even; workers must be 1 or more.
int zelmp_rounded_band(int rows, int workers);

// The inclusive rows first..last of rows 0..total - 1 that `worker` (0 to
// workers - 1) takes; last < first is an empty share.
void zelmp_band_rows(int total, int workers, int worker, int& first, int& last);

// The share lo..hi (hi one past the end) of start..end that `worker` takes.
// Bands are measured from 0, not from start: a quirk that callers rely on.
void zelmp_band_span(int start, int end, int workers, int worker, int& lo, int& hi);
