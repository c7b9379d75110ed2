// A quadratic fitted to a run of edge points in its own frame: the points'
// centroid and principal direction give axes s (along) and t (across), and
// t = c0 + c1 s + c2 s^2 is fitted by least squares. Enough to say whether a
// run is one smooth stroke (the largest residual), how much it bends (the
// curvature at its middle) and how long it is. Pixels throughout.
#pragma once

#include <cstddef>

#include "DetectedLines.h"

struct PieceFit {
    double maxResidual = 0.0;
    std::size_t worstIndex = 0;  // index of the point farthest from the curve
    double rms = 0.0;
    double curvature = 0.0;  // 1 / radius, at the middle
    double length = 0.0;     // extent along the principal direction
};

// Fits points[first .. last] (inclusive, at least three).
PieceFit fitPiece(const PlanePoint* points, std::size_t first, std::size_t last);
