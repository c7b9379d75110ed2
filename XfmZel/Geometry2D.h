// Plane geometry on segments of `tagDPT2` points, in whatever units the caller
// uses (the line code passes pixels or frame fractions): the distance from a
// point to a segment, and the crossing of two segments.
#pragma once

#include "tagDPT.h"

// Result codes of intersection_of_lines_2D.
constexpr int kSegmentsCross = 0;
constexpr int kSegmentsParallel = 1;
constexpr int kSegmentsCrossOutside = 2;

// Distance from p to the segment a–b. When t is given it receives the segment
// parameter of the nearest point, clamped to 0…1 (0 for a degenerate segment).
double dist_from_point_to_line_2D(tagDPT2 p, tagDPT2 a, tagDPT2 b, double* t);

// Crossing of the segments a1–a2 and b1–b2. s and t (when given) receive the
// parameters along each segment (0 when parallel). `out` is written only when
// the result is kSegmentsCross.
int intersection_of_lines_2D(tagDPT2 a1, tagDPT2 a2, tagDPT2 b1, tagDPT2 b2, tagDPT2& out,
                             double* s, double* t);
