// One step of the recursive Gaussian's passes over `lanes` independent lines,
// in a plain and an AVX2 form that give the same bytes:
// v = ((B x[l] + a3 p3[l]) + a2 p2[l]) + a1 p1[l] in double precision, where
// p1 is the previous value of the pass (the one just computed), p2 and p3 the
// two before it; then x[l] := v rounded to float and p3[l] := v (the caller
// rotates the three state rows). The newest value is added last so that the
// chain from one step to the next is one product and one sum long.
#pragma once

#include "ZelCpu.h"
#include "ZelRecursiveGaussian.h"

void zelRecursiveStep(float* x, const double* p1, const double* p2, double* p3,
                      const ZelRecursiveCoefficients& c, long lanes);

void zelRecursiveStepPlain(float* x, const double* p1, const double* p2, double* p3,
                           const ZelRecursiveCoefficients& c, long first, long lanes);
#if ZEL_AVX2_FORMS
// Returns the first lane it did not compute.
long zelRecursiveStepAvx2(float* x, const double* p1, const double* p2, double* p3,
                          const ZelRecursiveCoefficients& c, long lanes);
#endif
