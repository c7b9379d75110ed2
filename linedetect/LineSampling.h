// The points a line is written with: its pieces in order along the line,
// each piece's edge points averaged over runs of about `step` pixels of edge
// (which takes the edge noise down without moving the points off the curve:
// over 20 px of a curve of radius 2000 px the mean sits 0.008 px inside it).
// Every line gets at least four points so the fit can measure it.
#pragma once

#include <vector>

#include "EdgePieces.h"
#include "RadialModel.h"

// pieces: indices into `all`, in any order: the direction of the line,
// straightened with (k1, k2), orders them and their points.
Polyline sampleLine(const std::vector<EdgePiece>& all, const std::vector<int>& pieces,
                    const RadialFrame& frame, double k1, double k2, double step);
