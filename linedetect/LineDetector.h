// The line detector: in a frame that may be distorted, the chains of edge
// points that should be straight lines in the world (door frames, buildings,
// horizons, chart rows), each kept as a polyline along the edge, ready to be
// drawn for the plug-in's fit.
//
// 1. Canny edges (sub-pixel) are chained and cut into smooth pieces
//    (EdgePieces.h); pieces bent more than a lens bends a line are refused.
// 2. The radial model most pieces agree on is estimated (RadialConsensus.h).
// 3. Straightened with it, pieces of one straight edge are merged into lines
//    (PieceMerging.h); the model is estimated again on the lines and the
//    merge done again with it.
// 4. Lines too short, blurred, textured, disagreeing with the model
//    (outliers) or clustered are rejected; the rest are sampled into points
//    (LineSampling.h), unless they are too little for a fit in all.
//
// The result depends only on the pixels: the same frame gives the same
// lines at any processor count. Image pixels, y down (DetectedLines.h).
#pragma once

#include <vector>

#include "DetectedLines.h"
#include "EdgePieces.h"
#include "FloatImageZel.h"
#include "LineDetectSettings.h"

// One frame, with the settings for its size. False when the picture has no
// pixels or memory ran out; finding no line is not a failure (out.lines is
// then empty).
bool detectLines(const FloatImageZel& luminance, LineDetection& out);
bool detectLines(const FloatImageZel& luminance, const LineDetectSettings& settings,
                 LineDetection& out);

// Several frames of one size pooled (a plate's frames): steps 2 to 4 on the
// pieces of all of them, with one model; lines never join across frames.
LineDetection selectLines(const std::vector<FramePieces>& frames,
                          const LineDetectSettings& settings);
