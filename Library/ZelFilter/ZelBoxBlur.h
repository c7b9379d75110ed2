// Box passes: the mean over a (2 rx + 1) x (2 ry + 1) window, replicate
// border, repeated `passes` times (three passes of a box come close to a
// Gaussian). Each pass is a separable convolution with equal weights (see
// ZelSeparableFilter.h), so the result does not depend on where the bands
// start. `out` is resized to the input and may be it. False when the input
// has no pixels, a radius is negative or above kZelMaxKernelRadius, passes < 1,
// or allocation failed.
#pragma once

#include "FloatImageZel.h"

bool zelBoxBlur(const FloatImageZel& in, FloatImageZel& out, int radiusX, int radiusY,
                int passes = 1);
