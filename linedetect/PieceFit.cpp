// Quadratic fit of a run of points in its principal frame.
#include "PieceFit.h"

#include <algorithm>
#include <cmath>

PieceFit fitPiece(const PlanePoint* points, std::size_t first, std::size_t last) {
    PieceFit fit;
    const double n = double(last - first + 1);
    double mx = 0.0, my = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        mx += points[i].x;
        my += points[i].y;
    }
    mx /= n;
    my /= n;
    double sxx = 0.0, sxy = 0.0, syy = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        const double x = points[i].x - mx, y = points[i].y - my;
        sxx += x * x;
        sxy += x * y;
        syy += y * y;
    }
    // Principal direction: the angle of the larger eigenvector.
    const double angle = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
    const double ux = std::cos(angle), uy = std::sin(angle);
    // Normal equations of t = c0 + c1 s + c2 s^2, with s scaled to about 1.
    double smin = 0.0, smax = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        const double s = (points[i].x - mx) * ux + (points[i].y - my) * uy;
        smin = std::min(smin, s);
        smax = std::max(smax, s);
    }
    fit.length = smax - smin;
    const double half = std::max(0.5 * fit.length, 1e-9);
    double m[3][4] = {};
    for (std::size_t i = first; i <= last; ++i) {
        const double x = points[i].x - mx, y = points[i].y - my;
        const double s = (x * ux + y * uy) / half, t = -x * uy + y * ux;
        const double b[3] = {1.0, s, s * s};
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) m[r][c] += b[r] * b[c];
            m[r][3] += b[r] * t;
        }
    }
    // Gaussian elimination with partial pivoting on the 3x3 system.
    for (int col = 0; col < 3; ++col) {
        int pivot = col;
        for (int r = col + 1; r < 3; ++r)
            if (std::fabs(m[r][col]) > std::fabs(m[pivot][col])) pivot = r;
        for (int c = 0; c < 4; ++c) std::swap(m[col][c], m[pivot][c]);
        if (std::fabs(m[col][col]) < 1e-12) continue;
        for (int r = 0; r < 3; ++r) {
            if (r == col) continue;
            const double f = m[r][col] / m[col][col];
            for (int c = col; c < 4; ++c) m[r][c] -= f * m[col][c];
        }
    }
    double c[3];
    for (int r = 0; r < 3; ++r) c[r] = std::fabs(m[r][r]) < 1e-12 ? 0.0 : m[r][3] / m[r][r];
    double sum = 0.0;
    for (std::size_t i = first; i <= last; ++i) {
        const double x = points[i].x - mx, y = points[i].y - my;
        const double s = (x * ux + y * uy) / half, t = -x * uy + y * ux;
        const double r = std::fabs(t - (c[0] + c[1] * s + c[2] * s * s));
        sum += r * r;
        if (r > fit.maxResidual) {
            fit.maxResidual = r;
            fit.worstIndex = i;
        }
    }
    fit.rms = std::sqrt(sum / n);
    // Back in pixels: t = c0 + (c1 / half) s + (c2 / half^2) s^2.
    const double slope = c[1] / half, bend = 2.0 * c[2] / (half * half);
    fit.curvature = std::fabs(bend) / std::pow(1.0 + slope * slope, 1.5);
    return fit;
}
