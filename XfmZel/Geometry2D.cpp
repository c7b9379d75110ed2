#include "Geometry2D.h"

#include <cmath>

namespace {

// Below this squared length a segment counts as a single point.
constexpr double kDegenerateLength2 = 1e-10;
// Below this cross product two directions count as parallel.
constexpr double kParallelDeterminant = 1e-10;

bool outside_unit_interval(double value) { return value < 0.0 || value > 1.0; }

}  // namespace

double dist_from_point_to_line_2D(tagDPT2 p, tagDPT2 a, tagDPT2 b, double* t) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double ax = a.x - p.x;
    const double ay = a.y - p.y;
    const double length2 = dx * dx + dy * dy;
    if (length2 < kDegenerateLength2) {
        if (t) *t = 0.0;
        return std::sqrt(ax * ax + ay * ay);
    }

    // Parameter of the foot of the perpendicular from p, kept on the segment.
    double s = -(ax * dx + ay * dy) / length2;
    if (s < 0.0) s = 0.0;
    if (s > 1.0) s = 1.0;
    const double ex = ax + s * dx;
    const double ey = ay + s * dy;
    if (t) *t = s;
    return std::sqrt(ex * ex + ey * ey);
}

int intersection_of_lines_2D(tagDPT2 a1, tagDPT2 a2, tagDPT2 b1, tagDPT2 b2, tagDPT2& out,
                             double* s, double* t) {
    if (s) *s = 0.0;
    if (t) *t = 0.0;

    const double dAx = a2.x - a1.x;
    const double dAy = a2.y - a1.y;
    const double dBx = b2.x - b1.x;
    const double dBy = b2.y - b1.y;
    const double ex = b1.x - a1.x;
    const double ey = b1.y - a1.y;
    // Solve a1 + sA·dA = b1 + tB·dB by Cramer's rule; den is the cross product of the directions.
    const double den = dAy * dBx - dAx * dBy;
    if (std::fabs(den) < kParallelDeterminant) return kSegmentsParallel;

    const double sA = (dBx * ey - dBy * ex) / den;
    const double tB = (dAx * ey - ex * dAy) / den;
    if (s) *s = sA;
    if (t) *t = tB;
    if (outside_unit_interval(sA) || outside_unit_interval(tB)) return kSegmentsCrossOutside;

    out.x = a1.x + sA * dAx;
    out.y = a1.y + sA * dAy;
    return kSegmentsCross;
}
