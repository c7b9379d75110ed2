// What the Canny detector finds in a float image: the edge pixels, and for
// each a sub-pixel point on the edge with the gradient there. Positions are
// in pixels with pixel centres at integers (column x at x, row y at y);
// gradients as in ZelGradient.h (dy towards larger rows).
#pragma once

#include <cstddef>
#include <vector>

struct ZelEdgePoint {
    float x = 0.0f;  // sub-pixel position on the edge
    float y = 0.0f;
    float dx = 0.0f;  // gradient at the edge pixel
    float dy = 0.0f;
    float magnitude = 0.0f;
    int column = 0;  // the edge pixel
    int row = 0;
};

struct ZelEdges {
    int width = 0;
    int height = 0;
    // Per pixel, row after row: 1 on an edge pixel, else 0.
    std::vector<unsigned char> map;
    // One per edge pixel, in row order then column order.
    std::vector<ZelEdgePoint> points;
    // The points of row y are points[rowStart[y]] .. points[rowStart[y + 1] - 1].
    std::vector<int> rowStart;

    // Working storage of the detector, kept between calls: the suppression's
    // classes per pixel, and its candidates (weak and strong maxima, with
    // their points) per band, under the band's first row.
    std::vector<unsigned char> classes;
    std::vector<std::vector<ZelEdgePoint>> candidates;

    bool isEdge(long x, long y) const { return map[static_cast<std::size_t>(y * width + x)] != 0; }
    // The index in `points` of the edge pixel (x, y), or -1 when it is no edge.
    int pointAt(long x, long y) const;
};
