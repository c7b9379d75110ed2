#include "ZelRandomDistributions.h"

#include <limits>

namespace {

constexpr double kLn2 = 0.693147180559945309417232121458176568;
constexpr double kSqrtHalf = 0.707106781186547524400844362104849039;
// Terms of the series: t^2 <= 0.0295, so 12 terms leave less than 1e-18.
constexpr int kSeriesTerms = 12;

}  // namespace

// x = m 2^e with sqrt(1/2) <= m < sqrt(2); log m = 2 atanh(t), t = (m - 1) / (m + 1),
// = 2 t (1 + t^2 / 3 + t^4 / 5 + ...), summed from the smallest term.
double zelPortableLog(double x) {
    if (x == 0.0) return -std::numeric_limits<double>::infinity();
    if (!(x > 0.0)) return std::numeric_limits<double>::quiet_NaN();
    if (x == std::numeric_limits<double>::infinity()) return x;
    int e = 0;
    double m = std::frexp(x, &e);
    if (m < kSqrtHalf) {
        m *= 2.0;
        --e;
    }
    const double t = (m - 1.0) / (m + 1.0);
    const double t2 = t * t;
    double series = 1.0 / (2.0 * kSeriesTerms + 1.0);
    for (int k = kSeriesTerms - 1; k >= 0; --k) series = series * t2 + 1.0 / (2.0 * k + 1.0);
    return static_cast<double>(e) * kLn2 + 2.0 * t * series;
}
