// Edge pieces: the Canny chains of a frame cut into smooth strokes. A chain
// is cut where a quadratic (PieceFit.h) no longer follows it within the
// piece tolerance, at the point farthest from its chord, until every part
// fits or is too short to keep. Each piece keeps its sub-pixel points and
// what the later tests need: its length, its curvature, how blurred its
// edge is and how many other edges lie beside it. Pixels throughout.
#pragma once

#include <cstddef>
#include <vector>

#include "DetectedLines.h"
#include "FloatImageZel.h"
#include "LineDetectSettings.h"
#include "ZelEdges.h"

struct EdgePiece {
    Polyline points;  // in order along the edge
    double length = 0.0;
    double curvature = 0.0;  // 1 / radius
    double blur = 0.0;       // the edge's own blur sigma (median of samples)
    double edgeShare = 0.0;  // share of edge pixels in the bands beside it
};

struct FramePieces {
    int width = 0;
    int height = 0;
    std::vector<EdgePiece> pieces;
    std::vector<EdgePiece> tooCurved;  // long enough for a line, but bent too far
    std::size_t shortPieces = 0;
};

// Canny on the luminance (thresholds from the settings and the frame's
// noise), chains, pieces. `edges` is working storage, kept between calls.
// False when the picture has no pixels or an allocation failed.
bool findEdgePieces(const FloatImageZel& luminance, const LineDetectSettings& settings,
                    ZelEdges& edges, FramePieces& out);

// The frame's noise sigma in value (fractions of full), from the median
// absolute second difference along rows (robust to edges).
float estimateNoise(const FloatImageZel& luminance);
