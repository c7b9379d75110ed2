// PlaneXfmZel: planar homography between a quadrilateral of four corners and
// the unit square, in either direction, solved in the least-squares sense by
// singular value decomposition. The homography h0..h7 maps (x, y) to
// ((h0 x + h1 y + h2) / den, (h3 x + h4 y + h5) / den), den = h6 x + h7 y + 1.
// Corner 1 pairs with (0, 0), corner 4 with (1, 0), corner 3 with (1, 1) and
// corner 2 with (0, 1). Coordinates are the caller's units.
#pragma once

#include "tagDPT.h"

constexpr double kPlaneHorizonDen = 1e-5;       // |den| below this: point on the horizon line
constexpr double kPlaneHorizonMarker = 1000.0;  // where horizon points are sent

class PlaneXfmZel {
  public:
    PlaneXfmZel();
    ~PlaneXfmZel();
    PlaneXfmZel(const PlaneXfmZel&) = delete;
    PlaneXfmZel& operator=(const PlaneXfmZel&) = delete;

    // corner 1..4; any other number is ignored.
    void set_corner(float x, float y, int corner);
    // toSquare != 0: corners to the unit square; 0: the square to the corners.
    // Replaces (and releases) the previous solution; null if solving failed.
    void find_xfm(int toSquare);
    // Least-squares homography taking p1[k] to p2[k], k < n (n >= 4); a new
    // array of 8 doubles that the caller releases with ZEL_FREE("XfmZel", ...),
    // or null.
    double* get_matrix(tagDPT2* p1, tagDPT2* p2, int n);
    // Map n points through solution; horizon points go to (1000, 1000).
    void p1_to_p2(tagDPT2* in, tagDPT2* out, int n);
    // The same, with den stored in z.
    void p1_to_p2_z(tagDPT2* in, tagDPT3* out, int n);

    double* solution;  // owned; from the tracked heap, tag "XfmZel"
    float cornerX[4];  // slots: corner 1, corner 2, corner 4, corner 3
    float cornerY[4];
};
