// Planar homography and the SVD solver behind it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "PlaneXfmZel.h"
#include "XfmSvd.h"
#include "zel_heap.h"

namespace {

void setSquareCorners(PlaneXfmZel& plane) {
    plane.set_corner(0, 0, 1);
    plane.set_corner(0, 1, 2);
    plane.set_corner(1, 1, 3);
    plane.set_corner(1, 0, 4);
}

// Householder reflection I - 2 u u^T / u^T u, 1-based, size n.
double** reflection(const double* u, int n) {
    double norm2 = 0;
    for (int i = 1; i <= n; ++i) norm2 += u[i] * u[i];
    double** q = matrix(1, n, 1, n);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j) q[i][j] = (i == j ? 1.0 : 0.0) - 2.0 * u[i] * u[j] / norm2;
    return q;
}

}  // namespace

TEST(XfmPlane, IdentityCornersAndCornerSlots) {
    PlaneXfmZel plane;
    setSquareCorners(plane);
    // Slots: corner 1, corner 2, corner 4, corner 3.
    EXPECT_EQ(plane.cornerX[2], 1.0f);
    EXPECT_EQ(plane.cornerY[2], 0.0f);
    EXPECT_EQ(plane.cornerY[3], 1.0f);
    plane.set_corner(9, 9, 0);
    plane.set_corner(9, 9, 5);
    const float xs[4] = {0, 0, 1, 1}, ys[4] = {0, 1, 0, 1};
    for (int s = 0; s < 4; ++s) {
        EXPECT_EQ(plane.cornerX[s], xs[s]);
        EXPECT_EQ(plane.cornerY[s], ys[s]);
    }
    const double identity[8] = {1, 0, 0, 0, 1, 0, 0, 0};
    for (int toSquare : {1, 0}) {
        plane.find_xfm(toSquare);
        ASSERT_NE(plane.solution, nullptr);
        for (int j = 0; j < 8; ++j) EXPECT_NEAR(plane.solution[j], identity[j], 1e-12);
    }
}

TEST(XfmPlane, QuadMapsOntoTheSquareBothWays) {
    PlaneXfmZel plane;
    const tagDPT2 c1{10, 20}, c2{5, 100}, c3{120, 140}, c4{110, 30};
    plane.set_corner(c1.x, c1.y, 1);
    plane.set_corner(c2.x, c2.y, 2);
    plane.set_corner(c3.x, c3.y, 3);
    plane.set_corner(c4.x, c4.y, 4);
    tagDPT2 square[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    tagDPT2 quad[4] = {c1, c4, c3, c2};
    tagDPT2 out[4];
    plane.find_xfm(0);
    plane.p1_to_p2(square, out, 4);
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(out[k].x, quad[k].x, 1e-8);
        EXPECT_NEAR(out[k].y, quad[k].y, 1e-8);
    }
    plane.find_xfm(1);  // replaces (and releases) the previous solution
    tagDPT3 back[4];
    plane.p1_to_p2_z(quad, back, 4);
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(back[k].x, square[k].x, 1e-10);
        EXPECT_NEAR(back[k].y, square[k].y, 1e-10);
        const double* h = plane.solution;
        EXPECT_DOUBLE_EQ(back[k].z, h[6] * quad[k].x + h[7] * quad[k].y + 1.0);
    }
    EXPECT_EQ(plane.get_matrix(quad, square, 3), nullptr);
}

TEST(XfmPlane, HorizonPointsGoToTheMarker) {
    PlaneXfmZel plane;
    // den = 1 - x: the line x = 1 is the horizon.
    plane.solution = static_cast<double*>(ZEL_MALLOC("XfmZel", 8 * sizeof(double)));
    const double h[8] = {1, 0, 0, 0, 1, 0, -1, 0};
    std::copy(h, h + 8, plane.solution);
    tagDPT2 in[3] = {{1.0, 5.0}, {1.0 - 5e-6, 2.0}, {0.5, 1.0}};
    tagDPT3 out[3];
    plane.p1_to_p2_z(in, out, 3);
    EXPECT_EQ(out[0].x, 1000.0);
    EXPECT_EQ(out[0].y, 1000.0);
    EXPECT_EQ(out[0].z, 0.0);
    EXPECT_EQ(out[1].x, 1000.0);
    EXPECT_NEAR(out[1].z, 5e-6, 1e-15);
    EXPECT_DOUBLE_EQ(out[2].x, 1.0);
    EXPECT_DOUBLE_EQ(out[2].y, 2.0);
    EXPECT_DOUBLE_EQ(out[2].z, 0.5);
    // In place.
    tagDPT2 pts[1] = {{0.5, 1.0}};
    plane.p1_to_p2(pts, pts, 1);
    EXPECT_DOUBLE_EQ(pts[0].x, 1.0);
    EXPECT_DOUBLE_EQ(pts[0].y, 2.0);
}

TEST(XfmSvd, RecoversKnownSingularValuesAndFactors) {
    // A = U diag(s) V^T from two reflections (orthogonal), 6 x 4.
    const int m = 6, n = 4;
    const double uVec[m + 1] = {0, 1, -2, 0.5, 3, 1, -1};
    const double vVec[n + 1] = {0, 2, 1, -1, 0.5};
    // Distinct values, then a rank-deficient set with a zero.
    const double sets[2][n + 1] = {{0, 5, 3, 2, 0.5}, {0, 4, 0, 1, 2}};
    for (const double* s : sets) {
        double** U = reflection(uVec, m);
        double** V = reflection(vVec, n);
        double** a = matrix(1, m, 1, n);
        double** keep = matrix(1, m, 1, n);
        for (int i = 1; i <= m; ++i)
            for (int j = 1; j <= n; ++j) {
                double sum = 0;
                for (int k = 1; k <= n; ++k) sum += U[i][k] * s[k] * V[j][k];
                a[i][j] = keep[i][j] = sum;
            }
        double* w = vector(1, n);
        double** v = matrix(1, n, 1, n);
        ASSERT_EQ(svdcmp(a, m, n, w, v), 0);
        double got[n], want[n];
        for (int k = 0; k < n; ++k) {
            got[k] = w[k + 1];
            want[k] = s[k + 1];
            EXPECT_GE(got[k], 0.0);
        }
        std::sort(got, got + n);
        std::sort(want, want + n);
        for (int k = 0; k < n; ++k) EXPECT_NEAR(got[k], want[k], 1e-12);
        // U diag(w) V^T = A and V^T V = I.
        for (int i = 1; i <= m; ++i)
            for (int j = 1; j <= n; ++j) {
                double sum = 0;
                for (int k = 1; k <= n; ++k) sum += a[i][k] * w[k] * v[j][k];
                EXPECT_NEAR(sum, keep[i][j], 1e-12);
            }
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j) {
                double dot = 0;
                for (int k = 1; k <= n; ++k) dot += v[k][i] * v[k][j];
                EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, 1e-12);
            }
        free_matrix(U, 1, m, 1, m);
        free_matrix(V, 1, n, 1, n);
        free_matrix(a, 1, m, 1, n);
        free_matrix(keep, 1, m, 1, n);
        free_matrix(v, 1, n, 1, n);
        free_vector(w, 1, n);
    }
}
