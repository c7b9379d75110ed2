// Unsharp-mask sharpening of a float image: the detail d = in - G(in), with G
// the Gaussian blur of zelGaussianBlur at `sigma`, added back `amount` times:
// out = in + amount d, but only where |d| > threshold (a threshold of 0
// sharpens everywhere; a small one leaves flat noise alone). Banded; `out` is
// resized to the input and may be it. False when the input has no pixels,
// sigma is not positive or allocation failed.
#pragma once

#include "FloatImageZel.h"

bool zelUnsharpMask(const FloatImageZel& in, FloatImageZel& out, float sigma, float amount,
                    float threshold = 0.0f);
