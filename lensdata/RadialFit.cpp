#include "RadialFit.h"

#include <algorithm>
#include <cmath>

std::vector<tagDPT2> frameGrid(int width, int height, int across) {
    const int longer = std::max(width, height);
    const double step = std::max(1.0, static_cast<double>(longer - 1) / std::max(1, across - 1));
    std::vector<double> xs, ys;
    for (double x = 0.0; x < width - 1; x += step) xs.push_back(x);
    xs.push_back(width - 1);
    for (double y = 0.0; y < height - 1; y += step) ys.push_back(y);
    ys.push_back(height - 1);
    std::vector<tagDPT2> grid;
    grid.reserve(xs.size() * ys.size());
    for (double y : ys)
        for (double x : xs) grid.push_back(tagDPT2{std::floor(x), std::floor(y)});
    return grid;
}

// Normal equations of the displacement d = (p - c)(k1 s + k2 s^2), s = r^2,
// over both coordinates of every pair.
RadialTerms fitRadialTerms(const std::vector<PointPair>& pairs, tagDPT2 centre, double unitRadius) {
    double a11 = 0.0, a12 = 0.0, a22 = 0.0, b1 = 0.0, b2 = 0.0;
    const double inverse = 1.0 / unitRadius;
    for (const PointPair& pair : pairs) {
        const double u = (pair.from.x - centre.x) * inverse;
        const double v = (pair.from.y - centre.y) * inverse;
        const double s = u * u + v * v;
        const double du = (pair.to.x - pair.from.x) * inverse;
        const double dv = (pair.to.y - pair.from.y) * inverse;
        // Columns of the design matrix for x: u s, u s^2; for y: v s, v s^2.
        const double g1x = u * s, g2x = u * s * s, g1y = v * s, g2y = v * s * s;
        a11 += g1x * g1x + g1y * g1y;
        a12 += g1x * g2x + g1y * g2y;
        a22 += g2x * g2x + g2y * g2y;
        b1 += g1x * du + g1y * dv;
        b2 += g2x * du + g2y * dv;
    }
    RadialTerms terms;
    const double det = a11 * a22 - a12 * a12;
    if (det == 0.0 || !std::isfinite(det)) return terms;
    terms.k1 = (a22 * b1 - a12 * b2) / det;
    terms.k2 = (a11 * b2 - a12 * b1) / det;
    return terms;
}

tagDPT2 applyRadialTerms(const RadialTerms& terms, tagDPT2 centre, double unitRadius, tagDPT2 p) {
    const double dx = p.x - centre.x, dy = p.y - centre.y;
    const double s = (dx * dx + dy * dy) / (unitRadius * unitRadius);
    const double f = terms.k1 * s + terms.k2 * s * s;
    return tagDPT2{p.x + dx * f, p.y + dy * f};
}

Residual residualOf(const std::vector<tagDPT2>& got, const std::vector<tagDPT2>& want) {
    Residual r;
    const size_t n = std::min(got.size(), want.size());
    if (n == 0) return r;
    double sum = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const double d = std::hypot(got[i].x - want[i].x, got[i].y - want[i].y);
        // A NaN stands out as the largest residual rather than vanishing.
        if (!(d <= r.largest)) r.largest = d;
        sum += d * d;
    }
    r.rms = std::sqrt(sum / n);
    return r;
}
