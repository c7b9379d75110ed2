// Least-squares fit of the two radial terms of p' = p + (p - c)(k1 r^2 + k2 r^4),
// r = |p - c| / unitRadius, to pairs of points (p, p'), in pixels. The model
// is linear in k1 and k2, so the fit is one 2 x 2 solve; pairs that a pure
// radial model reproduces come back exactly (to rounding).
#pragma once

#include <vector>

#include "tagDPT.h"

struct PointPair {
    tagDPT2 from;
    tagDPT2 to;
};

struct RadialTerms {
    double k1 = 0.0;
    double k2 = 0.0;
};

// The frame's pixels in a grid about `across` points along the longer side,
// the last row and column included; x in 0..width-1, y in 0..height-1.
std::vector<tagDPT2> frameGrid(int width, int height, int across);

RadialTerms fitRadialTerms(const std::vector<PointPair>& pairs, tagDPT2 centre, double unitRadius);
// Where the terms carry a point.
tagDPT2 applyRadialTerms(const RadialTerms& terms, tagDPT2 centre, double unitRadius, tagDPT2 p);

// The largest and the root-mean-square distance of pairs of positions, in pixels.
struct Residual {
    double largest = 0.0;
    double rms = 0.0;
};
Residual residualOf(const std::vector<tagDPT2>& got, const std::vector<tagDPT2>& want);
