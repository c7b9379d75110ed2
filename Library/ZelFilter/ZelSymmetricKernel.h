// Symmetric convolution kernels of the separable filters: weights[k] is the
// weight of the samples k pixels either side of the centre, k = 0 .. radius.
// The Gaussian is sampled at whole pixel offsets, exp(-k^2 / (2 sigma^2)),
// computed in double precision, divided by the sum over -radius .. radius and
// rounded to float; the box kernel weighs every tap 1 / (2 radius + 1).
#pragma once

#include <vector>

// The widest kernel the separable filters take (pixels either side): every
// output reads 2 radius + 1 inputs each way, so wider ones belong to the
// recursive Gaussian.
constexpr int kZelMaxKernelRadius = 1024;

struct ZelSymmetricKernel {
    std::vector<float> weights;  // weights[0] the centre; size radius + 1
    int radius() const { return static_cast<int>(weights.size()) - 1; }
};

// The default truncation: ceil(4 sigma) pixels, at least 1 (kZelMaxKernelRadius + 1
// for any sigma too wide for that, so that the kernel is refused).
int zelGaussianRadius(float sigma);
// Empty weights when sigma is not positive or radius is negative or above
// kZelMaxKernelRadius.
ZelSymmetricKernel zelGaussianKernel(float sigma, int radius);
ZelSymmetricKernel zelBoxKernel(int radius);
