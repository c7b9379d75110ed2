// Distance from a point to a segment and the crossing of two segments.
#include <gtest/gtest.h>

#include "Geometry2D.h"

TEST(Geometry2D, DistanceToSegmentClampsToItsEnds) {
    const tagDPT2 a{0, 0}, b{4, 0};
    double t = -1.0;
    EXPECT_DOUBLE_EQ(dist_from_point_to_line_2D({1, 3}, a, b, &t), 3.0);
    EXPECT_DOUBLE_EQ(t, 0.25);
    EXPECT_DOUBLE_EQ(dist_from_point_to_line_2D({7, 4}, a, b, &t), 5.0);  // past b: 3-4-5
    EXPECT_DOUBLE_EQ(t, 1.0);
    EXPECT_DOUBLE_EQ(dist_from_point_to_line_2D({-3, -4}, a, b, &t), 5.0);  // before a
    EXPECT_DOUBLE_EQ(t, 0.0);
    EXPECT_DOUBLE_EQ(dist_from_point_to_line_2D({1, 3}, a, b, nullptr), 3.0);

    // A zero-length segment measures to its end point with parameter 0.
    t = -1.0;
    EXPECT_DOUBLE_EQ(dist_from_point_to_line_2D({4, 5}, {1, 1}, {1, 1}, &t), 5.0);
    EXPECT_EQ(t, 0.0);
}

TEST(Geometry2D, SegmentCrossingCodes) {
    tagDPT2 out{-7, -7};
    double s = -1.0, t = -1.0;
    EXPECT_EQ(intersection_of_lines_2D({0, 0}, {2, 2}, {0, 2}, {2, 0}, out, &s, &t), 0);
    EXPECT_DOUBLE_EQ(out.x, 1.0);
    EXPECT_DOUBLE_EQ(out.y, 1.0);
    EXPECT_DOUBLE_EQ(s, 0.5);
    EXPECT_DOUBLE_EQ(t, 0.5);

    // Parallel and collinear-overlapping segments both report parallel.
    out = {-7, -7};
    EXPECT_EQ(intersection_of_lines_2D({0, 0}, {1, 0}, {0, 1}, {1, 1}, out, &s, &t), 1);
    EXPECT_EQ(s, 0.0);
    EXPECT_EQ(t, 0.0);
    EXPECT_EQ(intersection_of_lines_2D({0, 0}, {2, 0}, {1, 0}, {3, 0}, out, &s, &t), 1);
    EXPECT_EQ(out.x, -7.0);

    // The lines meet at (2, 0), beyond the end of the first segment.
    EXPECT_EQ(intersection_of_lines_2D({0, 0}, {1, 0}, {2, -1}, {2, 1}, out, &s, &t), 2);
    EXPECT_DOUBLE_EQ(s, 2.0);
    EXPECT_DOUBLE_EQ(t, 0.5);
    EXPECT_EQ(out.x, -7.0);
    EXPECT_EQ(out.y, -7.0);
    EXPECT_EQ(intersection_of_lines_2D({0, 0}, {1, 0}, {2, -1}, {2, 1}, out, nullptr, nullptr), 2);
}
