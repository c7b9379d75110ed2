#include "ZelRecursiveGaussian.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include "ZelRecursiveSteps.h"

namespace {

using Complex = std::complex<double>;

// Poles for sigma 2 (van Vliet, Young and Verbeek 1998, smallest maximum error).
const Complex kPole1(1.41650, 1.00829);
constexpr double kPole3 = 1.86543;

// Variance of the causal and anti-causal passes together: 2 d / (d - 1)^2 per pole.
double varianceOf(double q) {
    const Complex d1 = std::pow(kPole1, 1.0 / q);
    const double d3 = std::pow(kPole3, 1.0 / q);
    const Complex v1 = 2.0 * d1 / ((d1 - 1.0) * (d1 - 1.0));
    return 2.0 * v1.real() + 2.0 * d3 / ((d3 - 1.0) * (d3 - 1.0));
}

// The variance grows with q; bisection on log q is plenty (done once per blur).
double scaleFor(double sigma) {
    double low = 1e-3;
    double high = 1e4;
    constexpr int kSteps = 200;
    for (int i = 0; i < kSteps; ++i) {
        const double mid = std::sqrt(low * high);
        if (varianceOf(mid) < sigma * sigma)
            low = mid;
        else
            high = mid;
    }
    return std::sqrt(low * high);
}

// Triggs-Sdika matrix by running the filters on the deviations from the edge
// value: column j starts the causal pass with w[N-1-j] - u = 1 (the others 0)
// and no input, runs it until it has died out, then the anti-causal pass back
// from there; the anti-causal values at N, N+1, N+2 are column j.
void boundaryMatrix(double a1, double a2, double a3, double b, double largestPole, double m[3][3]) {
    constexpr double kNegligible = 1e-17;
    const long length = 16 + static_cast<long>(std::log(kNegligible) / std::log(largestPole));
    std::vector<double> w(static_cast<size_t>(length) + 3);
    std::vector<double> y(static_cast<size_t>(length) + 3);
    for (int j = 0; j < 3; ++j) {
        // w[i] holds the deviation at N - 3 + i.
        std::fill(w.begin(), w.end(), 0.0);
        w[2 - j] = 1.0;
        for (long i = 3; i < length + 3; ++i) w[i] = a1 * w[i - 1] + a2 * w[i - 2] + a3 * w[i - 3];
        std::fill(y.begin(), y.end(), 0.0);
        for (long i = length - 1; i >= 0; --i) {
            const double next1 = i + 1 < length ? y[i + 1] : 0.0;
            const double next2 = i + 2 < length ? y[i + 2] : 0.0;
            const double next3 = i + 3 < length ? y[i + 3] : 0.0;
            y[i] = b * w[i + 3] + a1 * next1 + a2 * next2 + a3 * next3;
        }
        for (int k = 0; k < 3; ++k) m[k][j] = y[k];
    }
}

}  // namespace

ZelRecursiveCoefficients zelRecursiveGaussianCoefficients(float sigma) {
    const double q = scaleFor(sigma);
    // Poles of the causal pass p = 1 / d: a1 = p1 + p2 + p3,
    // a2 = -(p1 p2 + p1 p3 + p2 p3), a3 = p1 p2 p3, with p2 the conjugate of p1.
    const Complex p1 = 1.0 / std::pow(kPole1, 1.0 / q);
    const double p3 = 1.0 / std::pow(kPole3, 1.0 / q);
    const double pairSum = 2.0 * p1.real();
    const double pairProduct = std::norm(p1);
    const double a1 = pairSum + p3;
    const double a2 = -(pairProduct + pairSum * p3);
    const double a3 = pairProduct * p3;
    const double b = 1.0 - a1 - a2 - a3;
    ZelRecursiveCoefficients c;
    c.a1 = a1;
    c.a2 = a2;
    c.a3 = a3;
    c.b = b;
    boundaryMatrix(a1, a2, a3, b, std::max(std::abs(p1), p3), c.m);
    return c;
}

void zelRecursiveLines(float* data, long count, long stride, long lanes,
                       const ZelRecursiveCoefficients& c, double* scratch) {
    if (count <= 0 || lanes <= 0) return;
    // Three rows of feedback state, rotated after every step (p1 the newest),
    // and the last input value, repeated beyond the end.
    double* p1 = scratch;
    double* p2 = scratch + lanes;
    double* p3 = scratch + 2 * lanes;
    double* edge = scratch + 3 * lanes;
    const long n = count;
    auto at = [data, stride](long i) { return data + i * stride; };
    auto rotate = [&p1, &p2, &p3] {
        double* newest = p3;
        p3 = p2;
        p2 = p1;
        p1 = newest;
    };
    // Causal pass, started from the first value's steady state.
    for (long l = 0; l < lanes; ++l) {
        p1[l] = p2[l] = p3[l] = at(0)[l];
        edge[l] = at(n - 1)[l];
    }
    for (long i = 0; i < n; ++i) {
        zelRecursiveStep(at(i), p1, p2, p3, c, lanes);
        rotate();
    }
    // p1, p2, p3 now hold w[N-1], w[N-2], w[N-3]; they become y[N], y[N+1], y[N+2].
    for (long l = 0; l < lanes; ++l) {
        const double u = edge[l];
        const double d0 = p1[l] - u;
        const double d1 = p2[l] - u;
        const double d2 = p3[l] - u;
        p1[l] = u + ((c.m[0][0] * d0 + c.m[0][1] * d1) + c.m[0][2] * d2);
        p2[l] = u + ((c.m[1][0] * d0 + c.m[1][1] * d1) + c.m[1][2] * d2);
        p3[l] = u + ((c.m[2][0] * d0 + c.m[2][1] * d1) + c.m[2][2] * d2);
    }
    for (long i = n - 1; i >= 0; --i) {
        zelRecursiveStep(at(i), p1, p2, p3, c, lanes);
        rotate();
    }
}
