// The detector on frames drawn through a known radial model: where its
// points lie, how it splits and merges, what it rejects and refuses.
#include <gtest/gtest.h>

#include <set>

#include "DistortedScenes.h"
#include "LineDetector.h"

namespace {

// Bright bars and a frame near the picture's edges, where a lens bends most.
TestScene barsScene(double k1, double k2) {
    TestScene s;
    s.k1 = k1;
    s.k2 = k2;
    s.rectangle(40, 30, 920, 510, 0.55f);
    s.rectangle(120, 90, 840, 130, 0.9f);
    s.rectangle(120, 400, 840, 450, 0.9f);
    s.rectangle(90, 170, 130, 370, 0.9f);
    s.rectangle(830, 170, 870, 370, 0.05f);
    s.polygon({{300, 200}, {700, 230}, {695, 290}, {295, 260}}, 0.85f);
    return s;
}

size_t pointCount(const LineDetection& d) {
    size_t n = 0;
    for (const Polyline& line : d.lines) n += line.size();
    return n;
}

// Index of the true edge nearest to the straightened point.
size_t nearestEdge(const TestScene& s, const PlanePoint& q) {
    size_t best = 0;
    double bestDistance = 1e30;
    for (size_t i = 0; i < s.edges.size(); ++i) {
        TestScene one;
        one.edges = {s.edges[i]};
        const double d = one.distanceToEdges(q);
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return best;
}

}  // namespace

TEST(LineDetector, PointsLieOnTheTrueCurvesOfADistortedFrame) {
    for (const auto& model : {std::pair<double, double>{0.12, 0.02}, {-0.08, -0.015}}) {
        const TestScene scene = barsScene(model.first, model.second);
        LineDetection found;
        ASSERT_TRUE(detectLines(scene.draw(0.7f, 0.004), found));
        SCOPED_TRACE("k1 " + std::to_string(model.first));
        EXPECT_GE(found.lines.size(), 12u);
        EXPECT_GE(pointCount(found), 400u);
        const RadialFrame frame = RadialFrame::of(scene.width, scene.height);
        double worst = 0.0;
        for (const Polyline& line : found.lines) {
            EXPECT_GE(line.size(), 4u);
            for (const PlanePoint& p : line)
                worst =
                    std::max(worst, scene.distanceToEdges(frame.straighten(p, scene.k1, scene.k2)));
        }
        // Sub-pixel Canny points averaged over runs of edge.
        EXPECT_LT(worst, 0.15);
        // The detector's own model moves no point within 0.7 of the
        // half-diagonal by more than a third of a pixel from the truth.
        EXPECT_LT(modelDisplacement(scene.width, scene.height, found.radial1, found.radial2,
                                    scene.k1, scene.k2),
                  0.35);
        EXPECT_TRUE(found.modelFound);
    }
}

TEST(LineDetector, SplitsAtCornersAndMergesAcrossGaps) {
    TestScene scene;
    scene.k1 = 0.1;
    scene.k2 = 0.02;
    scene.rectangle(150, 120, 810, 420, 0.8f);
    scene.rectangle(60, 440, 900, 520, 0.8f);
    // Occluders: the long bar's edges are cut in two, and so is the
    // rectangle's top edge; the discs' own edges are curved.
    scene.disc(480, 480, 50, 0.45f);
    scene.disc(480, 120, 30, 0.45f);
    LineDetection found;
    ASSERT_TRUE(detectLines(scene.draw(), found));
    const RadialFrame frame = RadialFrame::of(scene.width, scene.height);
    std::set<size_t> edgesFound;
    for (const Polyline& line : found.lines) {
        // Every point of a line on one straight edge: split at the corners.
        const size_t edge = nearestEdge(scene, frame.straighten(line.front(), scene.k1, scene.k2));
        for (const PlanePoint& p : line)
            EXPECT_EQ(nearestEdge(scene, frame.straighten(p, scene.k1, scene.k2)), edge);
        EXPECT_TRUE(edgesFound.insert(edge).second) << "edge " << edge << " found twice";
        // The cut edges come out whole: points on both sides of the disc.
        const Segment& s = scene.edges[edge];
        if (std::fabs(s.a.y - s.b.y) < 1e-9 && std::fabs(s.b.x - s.a.x) > 600) {
            const PlanePoint first = frame.straighten(line.front(), scene.k1, scene.k2);
            const PlanePoint last = frame.straighten(line.back(), scene.k1, scene.k2);
            EXPECT_LT(std::min(first.x, last.x), 300.0) << "edge " << edge;
            EXPECT_GT(std::max(first.x, last.x), 660.0) << "edge " << edge;
        }
    }
    // Both rectangles' four sides.
    EXPECT_EQ(edgesFound.size(), 8u);
}

TEST(LineDetector, RejectsShortTexturedAndCurvedEdges) {
    // Short: small squares only.
    TestScene small;
    small.samples = 2;
    small.shapes.push_back([](double x, double y) {
        const bool on = x > 60 && y > 60 && x < 900 && y < 480 && std::fmod(x - 60, 70.0) < 18 &&
                        std::fmod(y - 60, 70.0) < 18;
        return on ? 0.9f : -1.0f;
    });
    LineDetection found;
    ASSERT_TRUE(detectLines(small.draw(), found));
    EXPECT_TRUE(found.lines.empty());
    EXPECT_GT(found.shortPieces, 50u);

    // Textured: a field of small random blobs.
    TestScene texture;
    texture.samples = 2;
    texture.blobs(7.0, 7);
    ASSERT_TRUE(detectLines(texture.draw(), found));
    EXPECT_TRUE(found.lines.empty());

    // Blinds, thin slats 5 px apart: each edge has others beside it
    // (textured) or close parallels (clustered); one may stay.
    TestScene blinds;
    blinds.samples = 2;
    blinds.k1 = 0.05;
    for (int i = 0; i < 12; ++i) blinds.rectangle(200, 150 + 5 * i, 760, 152.5 + 5 * i, 0.8f);
    ASSERT_TRUE(detectLines(blinds.draw(0.5f), found));
    size_t crowded = 0;
    for (const RejectedLine& r : found.rejected)
        crowded += r.why == LineRejection::kClustered || r.why == LineRejection::kTextured;
    EXPECT_GE(crowded, 20u);
    EXPECT_LE(found.lines.size(), 3u);  // the slats' ends may remain, short and apart

    // Curved objects among straight lines: a small disc is too curved for
    // any lens, a large gentle arc disagrees with the straight lines' model.
    TestScene mixed = barsScene(0.1, 0.0);
    mixed.disc(220, 230, 45, 0.95f);
    mixed.disc(480, 2100, 1750, 0.7f);  // its top is an arc of radius 1750 px
    ASSERT_TRUE(detectLines(mixed.draw(), found));
    std::multiset<LineRejection> reasons;
    for (const RejectedLine& r : found.rejected) reasons.insert(r.why);
    EXPECT_GE(reasons.count(LineRejection::kTooCurved), 1u);
    EXPECT_GE(reasons.count(LineRejection::kOutlier), 1u);
    // A short stretch of the gentle arc (50 px bends 0.2 px) cannot be told
    // from a straight edge; every longer line kept is a straight edge.
    const RadialFrame frame = RadialFrame::of(mixed.width, mixed.height);
    for (const Polyline& line : found.lines) {
        if (std::hypot(line.back().x - line.front().x, line.back().y - line.front().y) < 80.0)
            continue;
        for (const PlanePoint& p : line)
            EXPECT_LT(mixed.distanceToEdges(frame.straighten(p, mixed.k1, mixed.k2)), 0.3)
                << "a point off the straight edges at " << p.x << ", " << p.y;
    }
    EXPECT_LT(modelDisplacement(960, 540, found.radial1, found.radial2, 0.1, 0.0), 0.5);
}

TEST(LineDetector, RefusesFlatNoisyAndBlurredFrames) {
    TestScene flat;
    flat.samples = 1;
    LineDetection found;
    ASSERT_TRUE(detectLines(flat.draw(0.0f, 0.01), found));
    EXPECT_TRUE(found.lines.empty());
    ASSERT_TRUE(detectLines(flat.draw(0.0f, 0.15, 3), found));
    EXPECT_TRUE(found.lines.empty());
    // The bars out of focus: a blur of sigma 6 at this size.
    ASSERT_TRUE(detectLines(barsScene(0.1, 0.0).draw(6.0f, 0.004), found));
    EXPECT_TRUE(found.lines.empty());
    // A twig: two edges of 150 px, a fifth of the diagonal in all, are too
    // little to fit a lens on.
    TestScene twig;
    twig.samples = 2;
    twig.rectangle(400, 200, 550, 208, 0.9f);
    ASSERT_TRUE(detectLines(twig.draw(), found));
    EXPECT_TRUE(found.lines.empty());
    EXPECT_EQ(found.tooLittle.size(), 2u);
    // No pixels at all is a failure, not an empty result.
    EXPECT_FALSE(detectLines(FloatImageZel(), found));
}
