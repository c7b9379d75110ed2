// Merging the pieces of one frame into lines, in the straightened picture:
// once the model straightens them, pieces of one straight edge (cut by a
// corner, an occluder or a gap in the contrast) lie on one straight line.
// Two pieces are joined when each one's ends lie within the merge distance
// (plus a little per pixel of gap, for the model's own error) of the other's
// straight line, they point the same way within kMaxMergeDegrees, they do not
// run side by side (overlap at most a few pixels) and the gap between them
// is at most maxGapInDiagonals of the diagonal; nearer pairs first, and only
// while the joined line stays within the line tolerance of straight.
#pragma once

#include <vector>

#include "EdgePieces.h"
#include "LineDetectSettings.h"
#include "RadialModel.h"

// Groups of indices into pieces, each group one line; every piece is in one group.
std::vector<std::vector<int>> mergePieces(const std::vector<EdgePiece>& pieces,
                                          const RadialFrame& frame, double k1, double k2,
                                          const LineDetectSettings& settings);

// A straight line fitted to points (total least squares): centroid, unit
// direction, the extent of the points along it, and the RMS distance.
struct StraightFit {
    double cx = 0.0, cy = 0.0;
    double dx = 1.0, dy = 0.0;
    double low = 0.0, high = 0.0;
    double rms = 0.0;
    double along(double x, double y) const { return (x - cx) * dx + (y - cy) * dy; }
    double across(double x, double y) const { return -(x - cx) * dy + (y - cy) * dx; }
};
StraightFit fitStraight(const Polyline& points);

// The points straightened with the model.
Polyline straightened(const Polyline& points, const RadialFrame& frame, double k1, double k2);
