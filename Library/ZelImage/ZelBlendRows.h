// The row kernel of ImageZel::InBlend, in a plain and an AVX2 form that give
// the same bytes: per channel, this := other * amount + this * keep in single
// precision (keep = 1 - amount), truncated toward zero to an integer whose
// low 16 bits are stored. Channels are 15-bit values in 16-bit words.
#pragma once

#include "PixelZel.h"
#include "ZelCpu.h"

void zelBlendRow(PixelZel* row, const PixelZel* other, long count, float amount, float keep);

void zelBlendRowPlain(PixelZel* row, const PixelZel* other, long count, float amount, float keep);
#if ZEL_AVX2_FORMS
void zelBlendRowAvx2(PixelZel* row, const PixelZel* other, long count, float amount, float keep);
#endif
