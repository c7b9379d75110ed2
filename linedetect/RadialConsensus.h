// The radial model most of the edges agree on. Each edge (a piece, or a line
// of merged pieces) is given by its straightness moments (RadialModel.h).
// A candidate k1 is the one that makes a single edge straightest (k2 = 0),
// for each of the longest edges, and 0. Each is judged by the edges it
// straightens within the tolerance: one vote an edge, less for an edge that
// is straight under almost any model, so a long curved object cannot outvote
// many straight edges; ties go to the lower truncated squared error, sum of
// n min(d^2, tolerance^2) (d the edge's RMS distance from a straight line
// once straightened). The winner is refined in k1 and k2 on that error, then
// by least squares on the edges within the tolerance. All
// searches are deterministic (grids, golden sections and a Nelder-Mead
// simplex from fixed starts).
#pragma once

#include <vector>

#include "RadialModel.h"

struct RadialEstimate {
    double k1 = 0.0;
    double k2 = 0.0;
    std::vector<double> rms;  // per edge, pixels, under (k1, k2)
};

// tolerance: RMS in pixels within which an edge agrees.
RadialEstimate estimateRadialModel(const RadialFrame& frame,
                                   const std::vector<StraightnessMoments>& edges, double tolerance);

// The k1 that makes one edge straightest with k2 = 0, within +-kMaxK1.
double straightestK1(const RadialFrame& frame, const StraightnessMoments& edge);
