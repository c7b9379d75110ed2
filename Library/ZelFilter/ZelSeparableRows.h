// Row kernels of the separable symmetric filters, in a plain and an AVX2 form
// that give the same bytes (each output adds the same products in the same
// order; AVX2 only computes eight outputs at once). With w the weights
// (w[0] the centre) and r the radius:
// - down a column: out[x] = w0 c[x] + w1 (u1[x] + d1[x]) + ... + wr (ur[x] + dr[x]),
//   summed left to right, where rows[r] is the centre row c, rows[r - k] the
//   row k above (uk) and rows[r + k] the row k below (dk);
// - along a row: out[x] = w0 p[x] + w1 (p[x-1] + p[x+1]) + ... + wr (p[x-r] + p[x+r]),
//   where p may be read from -r to count - 1 + r.
#pragma once

#include "ZelCpu.h"

void zelSymmetricColumnSum(const float* const* rows, const float* weights, int radius, float* out,
                           long count);
void zelSymmetricRowSum(const float* p, const float* weights, int radius, float* out, long count);

void zelSymmetricColumnSumPlain(const float* const* rows, const float* weights, int radius,
                                float* out, long first, long count);
void zelSymmetricRowSumPlain(const float* p, const float* weights, int radius, float* out,
                             long first, long count);
#if ZEL_AVX2_FORMS
// Return the first output they did not compute (the plain form finishes the row).
long zelSymmetricColumnSumAvx2(const float* const* rows, const float* weights, int radius,
                               float* out, long count);
long zelSymmetricRowSumAvx2(const float* p, const float* weights, int radius, float* out,
                            long count);
#endif
