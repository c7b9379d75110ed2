#include "ZelSymmetricKernel.h"

#include <cmath>

namespace {

// Pixels of truncation per sigma: the tail beyond 4 sigma weighs below 1e-4.
constexpr double kSigmasPerRadius = 4.0;

}  // namespace

int zelGaussianRadius(float sigma) {
    const double r = std::ceil(kSigmasPerRadius * static_cast<double>(sigma));
    if (!(r <= kZelMaxKernelRadius)) return kZelMaxKernelRadius + 1;
    return r < 1.0 ? 1 : static_cast<int>(r);
}

ZelSymmetricKernel zelGaussianKernel(float sigma, int radius) {
    ZelSymmetricKernel kernel;
    if (!(sigma > 0.0f) || radius < 0 || radius > kZelMaxKernelRadius) return kernel;
    const double s = sigma;
    std::vector<double> g(static_cast<size_t>(radius) + 1);
    double sum = 0.0;
    for (int k = 0; k <= radius; ++k) {
        g[k] = std::exp(-0.5 * k * k / (s * s));
        sum += k == 0 ? g[k] : 2.0 * g[k];
    }
    kernel.weights.resize(g.size());
    for (size_t k = 0; k < g.size(); ++k) kernel.weights[k] = static_cast<float>(g[k] / sum);
    return kernel;
}

ZelSymmetricKernel zelBoxKernel(int radius) {
    ZelSymmetricKernel kernel;
    if (radius < 0 || radius > kZelMaxKernelRadius) return kernel;
    const float w = static_cast<float>(1.0 / (2.0 * radius + 1.0));
    kernel.weights.assign(static_cast<size_t>(radius) + 1, w);
    return kernel;
}
