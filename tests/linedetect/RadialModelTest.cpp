// The straightness moments against a direct computation, and the
// per-edge and consensus estimates on points placed with a known model.
#include <gtest/gtest.h>

#include <cmath>

#include "RadialConsensus.h"
#include "RadialModel.h"
#include "ZelRandom.h"
#include "ZelRandomDistributions.h"

namespace {
// The image point d with F(d) = q, by fixed-point iteration on the radial
// factor (independent of the detector's code).
PlanePoint distort(const RadialFrame& f, PlanePoint q, double k1, double k2) {
    const double u = (q.x - f.centreX) / f.halfDiagonal, v = (q.y - f.centreY) / f.halfDiagonal;
    double s = 1.0;
    for (int i = 0; i < 200; ++i) {
        const double r2 = (u * u + v * v) * s * s;
        s = 1.0 / (1.0 + k1 * r2 + k2 * r2 * r2);
    }
    return {f.centreX + u * s * f.halfDiagonal, f.centreY + v * s * f.halfDiagonal};
}

// Mean squared distance from the total-least-squares line, directly.
double directMeanSquare(const std::vector<PlanePoint>& p) {
    double mx = 0, my = 0;
    for (const PlanePoint& q : p) {
        mx += q.x;
        my += q.y;
    }
    mx /= p.size();
    my /= p.size();
    double best = 1e30;
    for (int i = 0; i < 20000; ++i) {
        const double a = 3.14159265358979 * i / 20000;
        double sum = 0;
        for (const PlanePoint& q : p) {
            const double d = -(q.x - mx) * std::sin(a) + (q.y - my) * std::cos(a);
            sum += d * d;
        }
        best = std::min(best, sum / p.size());
    }
    return best;
}

// Points along the straight segment a-b, as the lens shows them.
std::vector<PlanePoint> bentLine(const RadialFrame& f, PlanePoint a, PlanePoint b, double k1,
                                 double k2, int n = 60) {
    std::vector<PlanePoint> points;
    for (int i = 0; i < n; ++i) {
        const double t = double(i) / (n - 1);
        points.push_back(distort(f, {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)}, k1, k2));
    }
    return points;
}
}  // namespace

TEST(RadialModel, MomentsGiveTheStraightenedPointsSpread) {
    const RadialFrame frame = RadialFrame::of(1920, 1080);
    EXPECT_DOUBLE_EQ(frame.centreX, 960.0);
    EXPECT_DOUBLE_EQ(frame.centreY, 539.0);  // the plug-in's centre, seen from the top row
    EXPECT_NEAR(frame.halfDiagonal, 1101.4536, 1e-4);
    ZelPcg32 random(5);
    std::vector<PlanePoint> points;
    StraightnessMoments all, first, second;
    for (int i = 0; i < 40; ++i) {
        const PlanePoint p{100 + 1700 * zelUniformDouble(random),
                           80 + 40 * zelUniformDouble(random) + 0.3 * i};
        points.push_back(p);
        all.add(frame, p);
        (i < 25 ? first : second).add(frame, p);
    }
    first.add(second);
    for (const auto& k : {std::pair<double, double>{0.0, 0.0}, {0.15, 0.03}, {-0.1, 0.02}}) {
        std::vector<PlanePoint> straightened;
        for (const PlanePoint& p : points)
            straightened.push_back(frame.straighten(p, k.first, k.second));
        const double direct = directMeanSquare(straightened);
        EXPECT_NEAR(all.meanSquare(frame, k.first, k.second), direct, 1e-3 * direct + 1e-9);
        EXPECT_NEAR(first.meanSquare(frame, k.first, k.second), direct, 1e-3 * direct + 1e-9);
    }
}

TEST(RadialModel, EdgesBentByALensGiveItsCoefficients) {
    const RadialFrame frame = RadialFrame::of(2048, 1152);
    const double k1 = 0.11, k2 = 0.025;
    // One line near the top edge: its own k1 (with k2 = 0) is near the truth.
    const StraightnessMoments top = [&] {
        StraightnessMoments m;
        for (const PlanePoint& p : bentLine(frame, {-100, 60}, {2150, 90}, k1, 0.0))
            m.add(frame, p);
        return m;
    }();
    EXPECT_NEAR(straightestK1(frame, top), k1, 1e-4);
    // Many lines, and one curved object (a circular arc) that agrees with none.
    std::vector<StraightnessMoments> edges;
    const PlanePoint ends[][2] = {{{-200, 40}, {2200, 60}},   {{-150, 1100}, {2300, 1080}},
                                  {{40, -100}, {70, 1300}},   {{2000, -80}, {1990, 1250}},
                                  {{300, 300}, {1800, 350}},  {{-100, 900}, {1500, 1200}},
                                  {{500, -100}, {200, 1300}}, {{1700, -100}, {1500, 1300}}};
    for (const auto& e : ends) {
        StraightnessMoments m;
        for (const PlanePoint& p : bentLine(frame, e[0], e[1], k1, k2)) m.add(frame, p);
        edges.push_back(m);
    }
    StraightnessMoments arc;
    for (int i = 0; i < 80; ++i) {
        const double a = -0.5 + i / 80.0;
        arc.add(frame, {1024 + 900 * std::sin(a), 1500 - 900 * std::cos(a)});
    }
    edges.push_back(arc);
    const RadialEstimate estimate = estimateRadialModel(frame, edges, 0.5);
    EXPECT_NEAR(estimate.k1, k1, 2e-4);
    EXPECT_NEAR(estimate.k2, k2, 4e-4);
    ASSERT_EQ(estimate.rms.size(), edges.size());
    for (size_t i = 0; i + 1 < edges.size(); ++i) EXPECT_LT(estimate.rms[i], 0.05);
    EXPECT_GT(estimate.rms.back(), 5.0);
}
