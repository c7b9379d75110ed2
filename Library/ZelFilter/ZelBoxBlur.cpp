#include "ZelBoxBlur.h"

#include "ZelSeparableFilter.h"
#include "ZelSymmetricKernel.h"

bool zelBoxBlur(const FloatImageZel& in, FloatImageZel& out, int radiusX, int radiusY, int passes) {
    if (radiusX < 0 || radiusY < 0 || radiusX > kZelMaxKernelRadius ||
        radiusY > kZelMaxKernelRadius || passes < 1)
        return false;
    const ZelSymmetricKernel kx = zelBoxKernel(radiusX);
    const ZelSymmetricKernel ky = zelBoxKernel(radiusY);
    if (!zelSeparableFilter(in, out, kx, ky)) return false;
    for (int pass = 1; pass < passes; ++pass)
        if (!zelSeparableFilter(out, out, kx, ky)) return false;
    return true;
}
