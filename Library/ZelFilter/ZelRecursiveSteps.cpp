#include "ZelRecursiveSteps.h"

void zelRecursiveStep(float* x, const double* p1, const double* p2, double* p3,
                      const ZelRecursiveCoefficients& c, long lanes) {
    long first = 0;
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) first = zelRecursiveStepAvx2(x, p1, p2, p3, c, lanes);
#endif
    zelRecursiveStepPlain(x, p1, p2, p3, c, first, lanes);
}

void zelRecursiveStepPlain(float* x, const double* p1, const double* p2, double* p3,
                           const ZelRecursiveCoefficients& c, long first, long lanes) {
    for (long l = first; l < lanes; ++l) {
        const double v = ((c.b * x[l] + c.a3 * p3[l]) + c.a2 * p2[l]) + c.a1 * p1[l];
        x[l] = static_cast<float>(v);
        p3[l] = v;
    }
}
