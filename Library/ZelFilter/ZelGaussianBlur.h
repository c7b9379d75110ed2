// Gaussian blur of a float image (sigma in pixels), replicate border, banded
// over the host's processors; `out` is resized to the input and may be it.
// - Exact: the separable convolution with the sampled, normalised kernel of
//   ZelSymmetricKernel.h, truncated at `radius` (0: ceil(4 sigma)).
// - Recursive: ZelRecursiveGaussian.h, the same cost at any sigma; its
//   impulse response is a close approximation of the Gaussian with exactly
//   the variance sigma^2.
// - zelGaussianBlur: the exact form below kZelRecursiveFromSigma (there it is
//   as fast as the recursive one or faster, and exact), the recursive one
//   from there on (its cost does not grow with sigma).
// Every call returns false when the input has no pixels, sigma is not
// positive (recursive: below kZelRecursiveMinSigma) or above kZelMaxSigma,
// the exact kernel would be wider than kZelMaxKernelRadius, or allocation
// failed.
#pragma once

#include "FloatImageZel.h"

constexpr float kZelRecursiveFromSigma = 5.0f;
// Wider blurs than this are refused: the recursive form's border conditions
// take time and memory in proportion to sigma.
constexpr float kZelMaxSigma = 10000.0f;

bool zelGaussianBlurExact(const FloatImageZel& in, FloatImageZel& out, float sigma, int radius = 0);
bool zelGaussianBlurRecursive(const FloatImageZel& in, FloatImageZel& out, float sigma);
bool zelGaussianBlur(const FloatImageZel& in, FloatImageZel& out, float sigma);
