// The lens model: the forward polynomial, its Jacobian and single-precision
// copy, and the inverse with its round trips and two failure results.
#include <gtest/gtest.h>

#include <cmath>

#include "StraightluxModel.h"

namespace {

struct Params {
    float k1, k2, squeeze, xCurvature, yCurvature;
};

StraightluxModel make_model(int width, int height, float cx, float cy, Params p) {
    StraightluxModel model;
    model.width = width;
    model.height = height;
    model.centreX = cx;
    model.centreY = cy;
    model.radial1 = p.k1;
    model.radial2 = p.k2;
    model.squeeze = p.squeeze;
    model.xCurvature = p.xCurvature;
    model.yCurvature = p.yCurvature;
    return model;
}

// A 200 × 150 frame has half-diagonal R = 125 pixels.
StraightluxModel small_frame_model(Params p = {0, 0, 1, 0, 0}) {
    return make_model(200, 150, 100.0f, 75.0f, p);
}

tagDPT2 forward(const StraightluxModel& model, double x, double y) {
    tagDPT2 out{0, 0};
    model.MapUndistortedToDistorted({x, y}, out);
    return out;
}

}  // namespace

TEST(StraightluxModel, SqueezeScalesOnlyVerticalAndCurvaturesOnlyTheVerticalOffset) {
    StraightluxModel model = small_frame_model({-0.125f, 0.0625f, 2.0f, 0.5f, -0.25f});

    // u = v = 0.4 by hand: A = -0.1875, a = -0.0625, b = 0.03125, B = -0.046875, r⁴ = 0.1024.
    tagDPT2 out = forward(model, 150, 125);
    EXPECT_NEAR(out.x, 0.4 * (1 - 0.02 - 0.03 + 0.0064) * 125 + 100, 1e-9);
    EXPECT_NEAR(out.y, 0.4 * (1 - 0.01 - 0.0075 + 0.0032) * 125 + 75, 1e-9);

    // On the horizontal axis neither squeeze nor the curvatures matter.
    for (float curvature : {0.5f, 3.0f}) {
        model.xCurvature = model.yCurvature = curvature;
        out = forward(model, 225, 75);
        EXPECT_NEAR(out.x, (1 - 0.125 + 0.0625) * 125 + 100, 1e-9);
        EXPECT_NEAR(out.y, 75.0, 1e-9);
    }
    // On the vertical axis (v = 0.5) only squeeze and yCurvature act: B = 1.25·(-0.0625).
    model.xCurvature = 7.0f;
    model.yCurvature = 0.25f;
    out = forward(model, 100, 137.5);
    EXPECT_NEAR(out.x, 100.0, 1e-9);
    EXPECT_NEAR(out.y, 0.5 * (1 - 0.078125 * 0.25 + 0.03125 * 0.0625) * 125 + 75, 1e-9);

    // R is half the diagonal over normScale: R = 62.5 puts (225, 75) at u = 2, v = 0.
    model.normScale = 2.0f;
    EXPECT_NEAR(forward(model, 225, 75).x, (2 - 0.125 * 8 + 0.0625 * 32) * 62.5 + 100, 1e-9);
}

TEST(StraightluxModel, InverseJacobianMatchesFiniteDifferences) {
    StraightluxModel model = small_frame_model({0.15f, -0.04f, 1.3f, 0.2f, -0.3f});
    const double R = 125.0, h = 1e-3;
    for (tagDPT2 n : {tagDPT2{0.3, -0.5}, tagDPT2{-0.7, 0.2}, tagDPT2{0.6, 0.6}}) {
        const double x = 100 + R * n.x, y = 75 + R * n.y;
        // Forward Jacobian by central differences; pixel scaling cancels.
        const tagDPT2 xp = forward(model, x + h, y), xm = forward(model, x - h, y);
        const tagDPT2 yp = forward(model, x, y + h), ym = forward(model, x, y - h);
        const double jxx = (xp.x - xm.x) / (2 * h), jyx = (xp.y - xm.y) / (2 * h);
        const double jxy = (yp.x - ym.x) / (2 * h), jyy = (yp.y - ym.y) / (2 * h);
        const double det = jxx * jyy - jxy * jyx;

        double i00, i01, i10, i11;
        ASSERT_TRUE(model.FindInverseDerivativesMatrix(n.x, n.y, i00, i01, i10, i11));
        EXPECT_NEAR(i00, jyy / det, 1e-6);
        EXPECT_NEAR(i01, -jxy / det, 1e-6);
        EXPECT_NEAR(i10, -jyx / det, 1e-6);
        EXPECT_NEAR(i11, jxx / det, 1e-6);
    }

    // k1 = -1/4 at (2, 0): the vertical derivative 1 + k1·p² vanishes.
    model.radial1 = -0.25f;
    model.radial2 = 0.0f;
    model.squeeze = 1.0f;
    double p = 2.0, q = 0.0, i00 = 9, i01 = 9, i10 = 9, i11 = 9;
    EXPECT_FALSE(model.FindInverseDerivativesMatrix(p, q, i00, i01, i10, i11));
    EXPECT_EQ(i00 + i01 + i10 + i11, 36.0);
}

TEST(StraightluxModel, SinglePrecisionForwardAgreesWithDouble) {
    const StraightluxModel model =
        make_model(2048, 1556, 1010.0f, 790.0f, {-0.12f, 0.03f, 1.4f, 0.1f, -0.2f});
    const StraightluxModel::FloatCoefficients c = model.makeFloatCoefficients();
    // About ten single-precision roundings of values up to ~2000 pixels.
    const double tolerance = 2e-3;
    for (int y = 0; y < 1556; y += 97) {
        for (int x = 0; x < 2048; x += 89) {
            float fx = 0, fy = 0;
            StraightluxModel::mapUndistortedToDistortedFloat(c, float(x), float(y), fx, fy);
            const tagDPT2 d = forward(model, x, y);
            EXPECT_NEAR(fx, d.x, tolerance) << x << "," << y;
            EXPECT_NEAR(fy, d.y, tolerance) << x << "," << y;
        }
    }
}

TEST(StraightluxInverse, RoundTripsWithinToleranceAndCountsCorrections) {
    const Params cases[] = {{0.1f, 0.0f, 1.0f, 0.0f, 0.0f},
                            {-0.15f, 0.02f, 1.0f, 0.0f, 0.0f},
                            {0.08f, -0.03f, 2.0f, 0.3f, -0.2f},
                            {-0.1f, 0.05f, 0.5f, -0.2f, 0.3f},
                            {0.2f, 0.1f, 1.3f, 0.5f, 0.5f}};
    for (const Params& p : cases) {
        StraightluxModel model = make_model(2048, 1556, 1000.0f, 800.0f, p);
        const double R = std::sqrt(1024.0 * 1024.0 + 778.0 * 778.0);
        int sum = 0;
        for (int y = 0; y <= 1556; y += 111) {
            for (int x = 0; x <= 2048; x += 128) {
                tagDPT2 distorted{0, 0}, back{0, 0};
                model.MapUndistortedToDistorted({double(x), double(y)}, distorted);
                const int status = model.MapDistortedToUndistorted(distorted, back);
                ASSERT_GE(status, 0) << x << "," << y << " k1 " << p.k1;
                sum += status;
                EXPECT_NEAR(back.x, x, 1e-6 * R) << x << "," << y << " k1 " << p.k1;
                EXPECT_NEAR(back.y, y, 1e-6 * R) << x << "," << y << " k1 " << p.k1;
            }
        }
        EXPECT_EQ(model.iterationTotal, sum);
    }
}

TEST(StraightluxInverse, IdentityWithoutRadialTermsAndAtTheCentre) {
    StraightluxModel model = small_frame_model({0.0f, 0.0f, 1.7f, 0.4f, -0.6f});
    double pu = 0, pv = 0;
    model.FindInitialPxPy(0.3, -0.7, pu, pv);
    EXPECT_EQ(pu, 0.3);
    EXPECT_EQ(pv, -0.7);
    for (tagDPT2 in : {tagDPT2{3, 140}, tagDPT2{199, 0}, tagDPT2{57.5, 75}}) {
        tagDPT2 out{0, 0};
        model.MapUndistortedToDistorted(in, out);
        EXPECT_NEAR(out.x, in.x, 1e-9);
        EXPECT_NEAR(out.y, in.y, 1e-9);
        EXPECT_EQ(model.MapDistortedToUndistorted(in, out), 0);
        EXPECT_NEAR(out.x, in.x, 1e-9);
        EXPECT_NEAR(out.y, in.y, 1e-9);
    }
    EXPECT_EQ(model.iterationTotal, 0.0);

    // The centre is a fixed point of any model.
    model = make_model(200, 150, 90.0f, 80.0f, {0.2f, -0.05f, 1.5f, 0.3f, 0.1f});
    tagDPT2 out{0, 0};
    model.MapUndistortedToDistorted({90, 80}, out);
    EXPECT_EQ(out.x, 90.0);
    EXPECT_EQ(out.y, 80.0);
    out = {0, 0};
    EXPECT_EQ(model.MapDistortedToUndistorted({90, 80}, out), 0);
    EXPECT_EQ(out.x, 90.0);
    EXPECT_EQ(out.y, 80.0);
}

TEST(StraightluxInverse, SeedKeepsTheUnscaledK2InTheVerticalMixedTerm) {
    // By hand, k1 = 0, k2 = 1/16, squeeze 2 (b = 1/32), u = v = 1/2:
    // pu = u·(1 − k2·(u⁴ + 2u²v² + v⁴)), pv = v·(1 − b·u⁴ − 2·k2·u²v² − b·v⁴).
    StraightluxModel model = small_frame_model({0.0f, 0.0625f, 2.0f, 0, 0});
    double pu = 0, pv = 0;
    model.FindInitialPxPy(0.5, 0.5, pu, pv);
    EXPECT_DOUBLE_EQ(pu, 0.5 * (1 - 0.0625 * 0.25));
    EXPECT_DOUBLE_EQ(pv, 0.5 * (1 - 0.03125 * 0.0625 - 0.125 * 0.0625 - 0.03125 * 0.0625));
}

TEST(StraightluxInverse, SingularJacobianLeavesTheOutputAlone) {
    // Barrel fold-over with k1 = -1/4: on the horizontal axis the seed is
    // u·(1 + u²/4 + 3u⁴/16); choose u (outside the frame) so that the seed is 2,
    // where the vertical derivative 1 + k1·p² is zero.
    double lo = 1.0, hi = 2.0;
    for (int i = 0; i < 200; ++i) {
        const double mid = 0.5 * (lo + hi);
        const double seed = mid * (1 + mid * mid / 4 + 3 * mid * mid * mid * mid / 16);
        if (seed < 2.0) {
            lo = mid;
        } else {
            hi = mid;
        }
    }
    StraightluxModel model = small_frame_model({-0.25f, 0.0f, 1.0f, 0.0f, 0.0f});
    model.iterationTotal = 5.0;
    tagDPT2 out{-3, -4};
    EXPECT_EQ(model.MapDistortedToUndistorted({100 + 125 * lo, 75}, out), -1);
    EXPECT_EQ(out.x, -3.0);
    EXPECT_EQ(out.y, -4.0);
    EXPECT_EQ(model.iterationTotal, 5.0);
}

TEST(StraightluxInverse, OscillatingNewtonStopsAfterFiftyCorrections) {
    // With k1 = -7/16, k2 = -1/32 and target u = 1 Newton settles into the
    // cycle 1 → 0 → 1 (f(1) = 17/32, f'(1) = -15/32), so it never converges.
    const double k1 = -0.4375, k2 = -0.03125, u = 1.0;
    double p = u * (1 - k1 * u * u + (3 * k1 * k1 - k2) * u * u * u * u);
    for (int i = 0; i < 50; ++i) {
        const double p2 = p * p;
        p -= (p + k1 * p2 * p + k2 * p2 * p2 * p - u) / (1 + 3 * k1 * p2 + 5 * k2 * p2 * p2);
    }
    ASSERT_TRUE(std::fabs(p) < 1e-6 || std::fabs(p - 1) < 1e-6);

    StraightluxModel model = small_frame_model({float(k1), float(k2), 1, 0, 0});
    model.iterationTotal = 2.0;
    tagDPT2 out{-3, -4};
    EXPECT_EQ(model.MapDistortedToUndistorted({225, 75}, out), -2);
    EXPECT_NEAR(out.x, 100 + 125 * p, 1e-6);
    EXPECT_NEAR(out.y, 75.0, 1e-9);
    EXPECT_EQ(model.iterationTotal, 52.0);
}
