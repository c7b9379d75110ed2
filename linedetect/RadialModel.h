// The radial model the detector works with, in the plug-in's own terms: a
// point is taken from the frame's centre (width / 2, height - 1 - height / 2
// in image pixels, the plug-in's centre seen from an image's top row) and
// divided by the half-diagonal R; it is straightened as
//     q = u * (1 + k1 |u|^2 + k2 |u|^4).
//
// StraightnessMoments sums what is needed to tell, for any k1 and k2 at
// once, how far a set of points is from a straight line once straightened:
// with v0 = u, v1 = |u|^2 u and v2 = |u|^4 u, q = v0 + k1 v1 + k2 v2, so the
// covariance of q is a quadratic form in (1, k1, k2) over the sums of the
// v_j and of their products. The smaller eigenvalue of that covariance is the
// mean squared distance from the best line. Sums add, so the moments of
// pieces merged are the sums of their moments.
#pragma once

#include "DetectedLines.h"

struct RadialFrame {
    double centreX = 0.0;
    double centreY = 0.0;
    double halfDiagonal = 1.0;

    static RadialFrame of(int width, int height);
    // Straightened position of an image point, in image pixels.
    PlanePoint straighten(const PlanePoint& p, double k1, double k2) const;
};

struct StraightnessMoments {
    double count = 0.0;
    double sum[3][2] = {};            // sum of v_j
    double product[3][3][2][2] = {};  // sum of v_j v_k^T

    void add(const RadialFrame& frame, const PlanePoint& p);
    void add(const StraightnessMoments& other);
    // Mean squared distance, in pixels^2, of the straightened points from
    // their best straight line.
    double meanSquare(const RadialFrame& frame, double k1, double k2) const;
};
