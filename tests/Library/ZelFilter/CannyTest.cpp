#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "FilterReferenceData.h"
#include "FilterTestImages.h"
#include "ZelCanny.h"
#include "ZelCannySteps.h"
#include "ZelHost.h"

using filtertest::areaSampled;
using filtertest::imageOf;

namespace {

class FilterCanny : public ::testing::Test {
  protected:
    void SetUp() override { zelHost() = ZelHost{}; }
};

ZelCannySettings settings(float sigma, float low, float high) {
    ZelCannySettings s;
    s.sigma = sigma;
    s.low = low;
    s.high = high;
    return s;
}

// Points at least `margin` pixels inside the frame.
std::vector<ZelEdgePoint> inner(const ZelEdges& edges, int margin) {
    std::vector<ZelEdgePoint> kept;
    for (const ZelEdgePoint& p : edges.points)
        if (p.column >= margin && p.row >= margin && p.column < edges.width - margin &&
            p.row < edges.height - margin)
            kept.push_back(p);
    return kept;
}

}  // namespace

// A straight step whose edge lies at x = 20.3 (pixel 20 is 80% dark): every
// point sits on it, one per row, with the gradient pointing across it.
TEST_F(FilterCanny, StraightStepAtAKnownSubPixelPlace) {
    const FloatImageZel in =
        areaSampled(48, 40, 0.1f, 0.9f, [](double x, double) { return x > 20.3; });
    ZelEdges edges;
    ASSERT_TRUE(zelCanny(in, settings(1.0f, 0.05f, 0.1f), edges));
    const std::vector<ZelEdgePoint> points = inner(edges, 1);
    ASSERT_EQ(points.size(), 38u);
    for (const ZelEdgePoint& p : points) {
        EXPECT_NEAR(p.x, 20.3f, 0.03f);
        EXPECT_EQ(p.column, 20);
        EXPECT_EQ(p.y, static_cast<float>(p.row));
        EXPECT_GT(p.dx, 0.0f);
        EXPECT_NEAR(p.dy, 0.0f, 1e-6f);
        EXPECT_NEAR(p.magnitude, p.dx, 1e-6f);
    }
}

// An oblique step (the edge's normal at 20 degrees from x, through (30, 25)):
// every point lies on the line, measured along the normal.
TEST_F(FilterCanny, ObliqueStepPointsLieOnTheLine) {
    const double c = std::cos(20.0 * M_PI / 180.0), s = std::sin(20.0 * M_PI / 180.0);
    const FloatImageZel in = areaSampled(64, 50, 0.2f, 0.8f, [=](double x, double y) {
        return (x - 30.0) * c + (y - 25.0) * s > 0.0;
    });
    ZelEdges edges;
    ASSERT_TRUE(zelCanny(in, settings(1.0f, 0.05f, 0.1f), edges));
    const std::vector<ZelEdgePoint> points = inner(edges, 4);
    ASSERT_GT(points.size(), 35u);
    double sumSquares = 0.0;
    for (const ZelEdgePoint& p : points) {
        const double distance = (p.x - 30.0) * c + (p.y - 25.0) * s;
        EXPECT_LT(std::fabs(distance), 0.08) << p.x << "," << p.y;
        sumSquares += distance * distance;
        // The gradient points across the edge, towards the bright side.
        EXPECT_NEAR(std::atan2(p.dy, p.dx), 20.0 * M_PI / 180.0, 0.05);
    }
    EXPECT_LT(std::sqrt(sumSquares / points.size()), 0.04);
}

// A bright disc of radius 15.3: the points follow the circle all round.
TEST_F(FilterCanny, DiscPointsLieOnTheCircle) {
    const double cx = 32.4, cy = 30.7, radius = 15.3;
    const FloatImageZel in = areaSampled(64, 64, 0.1f, 0.7f, [=](double x, double y) {
        return (x - cx) * (x - cx) + (y - cy) * (y - cy) < radius * radius;
    });
    ZelEdges edges;
    ASSERT_TRUE(zelCanny(in, settings(1.0f, 0.05f, 0.1f), edges));
    ASSERT_GT(edges.points.size(), 80u);
    double sum = 0.0, sumSquares = 0.0;
    for (const ZelEdgePoint& p : edges.points) {
        const double error = std::hypot(p.x - cx, p.y - cy) - radius;
        EXPECT_LT(std::fabs(error), 0.12) << p.x << "," << p.y;
        sum += error;
        sumSquares += error * error;
    }
    const double n = static_cast<double>(edges.points.size());
    // A blurred curved edge moves inwards by about s^2 / 2R, with s^2 the
    // blur's variance plus the pixel's and the operator's (about 1.6): 0.05 here.
    EXPECT_NEAR(sum / n, -0.05, 0.02);
    EXPECT_LT(std::sqrt(sumSquares / n), 0.06);
}

// Against OpenCV's Canny (L2 magnitude, same thresholds on the same scale) on
// shapes: nearly every edge pixel of either lies within one pixel of the
// other's (the suppression directions differ on diagonals).
TEST_F(FilterCanny, EdgeMapAgreesWithOpenCv) {
    using namespace filterref;
    const FloatImageZel in = imageOf(kCannyWidth, kCannyHeight, [](int x, int y) {
        return kCannyInput[y * kCannyWidth + x] / 255.0f;
    });
    ZelEdges edges;
    ASSERT_TRUE(zelCanny(in, settings(0.0f, kCannyLow, kCannyHigh), edges));
    auto near = [](const unsigned char* map, int x, int y) {
        for (int j = -1; j <= 1; ++j)
            for (int i = -1; i <= 1; ++i) {
                const int u = x + i, v = y + j;
                if (u >= 0 && v >= 0 && u < kCannyWidth && v < kCannyHeight &&
                    map[v * kCannyWidth + u])
                    return true;
            }
        return false;
    };
    int ours = 0, oursMatched = 0, theirs = 0, theirsMatched = 0;
    for (int y = 1; y < kCannyHeight - 1; ++y)
        for (int x = 1; x < kCannyWidth - 1; ++x) {
            if (edges.isEdge(x, y)) {
                ++ours;
                oursMatched += near(kCannyEdges, x, y);
            }
            if (kCannyEdges[y * kCannyWidth + x]) {
                ++theirs;
                theirsMatched += near(edges.map.data(), x, y);
            }
        }
    ASSERT_GT(theirs, 200);
    EXPECT_GT(oursMatched, 0.97 * ours);
    EXPECT_GT(theirsMatched, 0.97 * theirs);
    EXPECT_NEAR(ours, theirs, 0.15 * theirs);
}

// Weak maxima survive only when joined to a strong one; the edge pixels,
// point indices and points agree.
TEST_F(FilterCanny, HysteresisKeepsWeakPixelsJoinedToStrongOnes) {
    const unsigned char N = kZelEdgeNone, W = kZelEdgeWeak, S = kZelEdgeStrong;
    std::vector<unsigned char> classes = {N, N, N, N, N, N, N,  //
                                          N, W, W, N, N, W, N,  //
                                          N, N, W, N, N, N, N,  //
                                          N, S, N, N, W, W, N,  //
                                          N, N, N, N, N, N, N};
    std::vector<long> seeds;
    for (long i = 0; i < static_cast<long>(classes.size()); ++i)
        if (classes[i] == S) seeds.push_back(i);
    zelHysteresis(classes, 7, seeds);
    std::vector<unsigned char> map;
    for (unsigned char c : classes) map.push_back(c == kZelEdgeKept);
    const std::vector<unsigned char> expected = {0, 0, 0, 0, 0, 0, 0,  //
                                                 0, 1, 1, 0, 0, 0, 0,  //
                                                 0, 0, 1, 0, 0, 0, 0,  //
                                                 0, 1, 0, 0, 0, 0, 0,  //
                                                 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(map, expected);

    const FloatImageZel in =
        areaSampled(30, 20, 0.0f, 1.0f, [](double x, double y) { return x + 0.5 * y > 18.0; });
    ZelEdges edges;
    ASSERT_TRUE(zelCanny(in, settings(1.0f, 0.05f, 0.1f), edges));
    ASSERT_FALSE(edges.points.empty());
    long edgePixels = 0;
    for (int y = 0; y < edges.height; ++y)
        for (int x = 0; x < edges.width; ++x) {
            const int index = edges.pointAt(x, y);
            edgePixels += edges.isEdge(x, y);
            ASSERT_EQ(index >= 0, edges.isEdge(x, y));
            if (index >= 0) {
                EXPECT_EQ(edges.points[index].column, x);
                EXPECT_EQ(edges.points[index].row, y);
            }
        }
    EXPECT_EQ(edgePixels, static_cast<long>(edges.points.size()));
}

// Flat pictures and texture below the low threshold give no edges; bad settings are refused.
TEST_F(FilterCanny, NothingToFindAndBadSettings) {
    ZelEdges edges;
    const FloatImageZel flat = imageOf(20, 20, [](int, int) { return 0.5f; });
    ASSERT_TRUE(zelCanny(flat, settings(1.0f, 0.01f, 0.02f), edges));
    EXPECT_TRUE(edges.points.empty());
    const FloatImageZel faint =
        imageOf(20, 20, [](int x, int y) { return 0.5f + 0.004f * ((x * 7 + y * 3) % 5); });
    ASSERT_TRUE(zelCanny(faint, settings(0.0f, 0.05f, 0.1f), edges));
    EXPECT_TRUE(edges.points.empty());
    EXPECT_FALSE(zelCanny(flat, settings(-1.0f, 0.01f, 0.02f), edges));
    EXPECT_FALSE(zelCanny(flat, settings(1.0f, 0.2f, 0.1f), edges));
    EXPECT_FALSE(zelCanny(FloatImageZel(), settings(1.0f, 0.01f, 0.02f), edges));
    // Pictures too small for an inner pixel are fine and empty.
    ASSERT_TRUE(zelCanny(imageOf(2, 5, [](int x, int) { return x * 1.0f; }),
                         settings(0.0f, 0.01f, 0.02f), edges));
    EXPECT_TRUE(edges.points.empty());
}
