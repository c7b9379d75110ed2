// Separable symmetric convolution of a float image: each output pixel is
// sum over i, j of kx[|i|] ky[|j|] in(x + i, y + j), with the edge pixels
// repeated beyond the image (replicate border). Computed row by row in bands
// over the host's processors: the column sum of the 2 ry + 1 input rows
// first, then the row sum across it, so no whole intermediate image is kept.
// `out` is resized to the input; it may be the input (which then costs a copy).
#pragma once

#include "FloatImageZel.h"
#include "ZelSymmetricKernel.h"

// False when the input has no pixels, a kernel is empty, or allocation failed.
bool zelSeparableFilter(const FloatImageZel& in, FloatImageZel& out, const ZelSymmetricKernel& kx,
                        const ZelSymmetricKernel& ky);
