// The steps of the Canny detector after the gradient, usable on their own.
//
// Non-maximum suppression (Devernay's form): a pixel is a local maximum when
// its gradient magnitude m is larger than the neighbour's on one side and not
// smaller than the other's, the neighbours taken across the edge along x when
// |dx| >= |dy| and along y otherwise. The outermost ring of pixels, whose
// gradient leans on repeated border values, is never an edge.
// Classes: 0 not a candidate, 1 weak (a maximum with m > low), 2 strong (m > high).
//
// Hysteresis: the edges are the strong pixels and every weak pixel joined to
// one through weak or strong pixels (8-neighbours). The result is the same
// whatever order the pixels are visited in.
//
// Sub-pixel points: a parabola through the magnitudes a, m, b at -1, 0, +1
// across the edge (along the axis the maximum was found on) peaks at
// delta = (a - b) / (2 (a - 2 m + b)), within -1/2 .. 1/2; the point is the
// pixel moved by delta along that axis, which lies on the edge even where the
// edge is oblique.
#pragma once

#include <vector>

#include "FloatImageZel.h"
#include "ZelEdges.h"

constexpr unsigned char kZelEdgeNone = 0;
constexpr unsigned char kZelEdgeWeak = 1;
constexpr unsigned char kZelEdgeStrong = 2;

// Banded. `classes` is resized to the image. False on missing pixels or size mismatch.
bool zelNonMaximumClasses(const FloatImageZel& magnitude, const FloatImageZel& dx,
                          const FloatImageZel& dy, float low, float high,
                          std::vector<unsigned char>& classes);
// `map` := 1 on the edges, 0 elsewhere (resized to width x height).
void zelHysteresis(const std::vector<unsigned char>& classes, int width, int height,
                   std::vector<unsigned char>& map);
// Fills edges.points and edges.pointOf from edges.map and the gradient images
// held in `edges` (banded; the points come out in row order at any processor count).
void zelEdgeSubPixelPoints(ZelEdges& edges);
