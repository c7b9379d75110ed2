// The recursive blur's strips: `lanes` rows of a picture copied across into
// [x][lane] order (strip[x * lanes + l] = rows[l][x]) and back, in a plain
// and an AVX2 form (8 x 8 blocks); pure copies, so both give the same bytes.
// lanes is a multiple of 8.
#pragma once

#include "ZelCpu.h"

void zelRowsToStrip(const float* const* rows, long lanes, long width, float* strip);
void zelStripToRows(const float* strip, long lanes, long width, float* const* rows);

void zelRowsToStripPlain(const float* const* rows, long lanes, long first, long width,
                         float* strip);
void zelStripToRowsPlain(const float* strip, long lanes, long first, long width,
                         float* const* rows);
#if ZEL_AVX2_FORMS
// Return the first column they did not copy.
long zelRowsToStripAvx2(const float* const* rows, long lanes, long width, float* strip);
long zelStripToRowsAvx2(const float* strip, long lanes, long width, float* const* rows);
#endif
