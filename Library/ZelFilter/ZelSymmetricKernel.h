// Symmetric convolution kernels of the separable filters: weights[k] is the
// weight of the samples k pixels either side of the centre, k = 0 .. radius.
// The Gaussian is sampled at whole pixel offsets, exp(-k^2 / (2 sigma^2)),
// computed in double precision, divided by the sum over -radius .. radius and
// rounded to float; the box kernel weighs every tap 1 / (2 radius + 1).
#pragma once

#include <vector>

struct ZelSymmetricKernel {
    std::vector<float> weights;  // weights[0] the centre; size radius + 1
    int radius() const { return static_cast<int>(weights.size()) - 1; }
};

// The default truncation: ceil(4 sigma) pixels, at least 1.
int zelGaussianRadius(float sigma);
// Empty weights when sigma is not positive or radius is negative.
ZelSymmetricKernel zelGaussianKernel(float sigma, int radius);
ZelSymmetricKernel zelBoxKernel(int radius);
