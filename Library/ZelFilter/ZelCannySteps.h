// The steps of the Canny detector, usable on their own. The gradient is
// never kept as whole images: the suppression computes it row by row in a
// rolling window of three rows and records each candidate's point there.
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
#include "ZelGradient.h"

constexpr unsigned char kZelEdgeNone = 0;
constexpr unsigned char kZelEdgeWeak = 1;
constexpr unsigned char kZelEdgeStrong = 2;
constexpr unsigned char kZelEdgeKept = 3;  // reached by the hysteresis

// Gradient and suppression in one banded pass: `classes` (resized to the
// image) gets every pixel's class, and `candidates` (resized to the height)
// the weak and strong pixels with their sub-pixel points, in row order, each
// band's under its first row. False when the input has no pixels.
bool zelNonMaximumClasses(const FloatImageZel& in, ZelGradientOperator op, float low, float high,
                          std::vector<unsigned char>& classes,
                          std::vector<std::vector<ZelEdgePoint>>& candidates);
// Marks kZelEdgeKept on the pixels (indices y * width + x) in `seeds` that
// are strong and on every weak or strong pixel joined to them. Pixels of the
// outermost ring must be kZelEdgeNone.
void zelHysteresis(std::vector<unsigned char>& classes, int width, const std::vector<long>& seeds);
// The whole detector after the gradient: hysteresis from the strong
// candidates, then edges.map, edges.points and edges.rowStart from the kept ones.
void zelKeepEdges(ZelEdges& edges);
