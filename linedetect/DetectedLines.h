// What the line detector finds in a frame: the lines kept, each a polyline of
// points along an edge in order from one end to the other, and the lines it
// rejected with the reason. Positions are image pixels: x to the right, y
// down, pixel centres at integers (the top-left pixel's centre is (0, 0)).
//
// The radial model the detector estimated on the way (to merge pieces and to
// find the lines that disagree) is reported with the plug-in's units: a
// point p, taken from the centre (width / 2, height - 1 - height / 2) and
// divided by the half-diagonal R, is straightened as p * (1 + k1 r^2 + k2 r^4).
#pragma once

#include <cstddef>
#include <vector>

struct PlanePoint {
    double x = 0.0;
    double y = 0.0;
};

using Polyline = std::vector<PlanePoint>;

// Why a line was not kept.
enum class LineRejection {
    kTooCurved,  // bends more than any plausible lens bends a straight line
    kBlurred,    // the edge is too soft to place (out of focus)
    kTextured,   // lies in a field of other edges (foliage, gravel, fabric)
    kClustered,  // one of several close parallel edges (stripes, text, blinds)
    kOutlier,    // disagrees with the radial model the other lines agree on
};

// The name a report shows: "too curved", "blurred", ...
const char* rejectionName(LineRejection why);

struct RejectedLine {
    Polyline points;
    LineRejection why = LineRejection::kOutlier;
    // kOutlier: RMS distance in pixels from a straight line once corrected
    // with the model; kTooCurved: radius of curvature in pixels; kBlurred:
    // the edge's blur sigma in pixels; kTextured: the share of edge pixels
    // around it; kClustered: distance in pixels to the line kept instead.
    double measure = 0.0;
};

struct LineDetection {
    int width = 0;
    int height = 0;
    std::vector<Polyline> lines;
    std::vector<RejectedLine> rejected;
    std::size_t shortPieces = 0;  // edge pieces too short to be a line (not listed)
    // Lines were found, but too little of them for a fit (their total length
    // below the minimum): `lines` is then empty and they are listed here.
    std::vector<Polyline> tooLittle;
    bool modelFound = false;  // a model was estimated from the lines
    double radial1 = 0.0;
    double radial2 = 0.0;
};
