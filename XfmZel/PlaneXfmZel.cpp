// Planar homography from point correspondences: each pair gives two rows of
// an 8-unknown linear system, solved by SVD and back-substitution. No small
// singular value is zeroed, so near-degenerate corner sets give large,
// unstable coefficients rather than an error.
#include "PlaneXfmZel.h"

#include <cmath>

#include "XfmSvd.h"
#include "zel_heap.h"

namespace {
const char* const kTag = "XfmZel";
const int kUnknowns = 8;
const int kMinPoints = 4;
// Storage slot of corner 1..4.
const int kCornerSlot[5] = {-1, 0, 1, 3, 2};

// Maps p through h and returns den; points on the horizon line (|den| below
// 1e-5) go to the deliberate far-away marker (1000, 1000). p is a copy so
// that in and out may be the same array.
double mapPoint(const double* h, const tagDPT2 p, double& u, double& v) {
    const double den = h[6] * p.x + h[7] * p.y + 1.0;
    if (std::fabs(den) >= kPlaneHorizonDen) {
        u = (h[0] * p.x + h[1] * p.y + h[2]) / den;
        v = (h[3] * p.x + h[4] * p.y + h[5]) / den;
    } else {
        u = kPlaneHorizonMarker;
        v = kPlaneHorizonMarker;
    }
    return den;
}
}  // namespace

PlaneXfmZel::PlaneXfmZel() : solution(nullptr), cornerX(), cornerY() {}

PlaneXfmZel::~PlaneXfmZel() {
    if (solution != nullptr) ZEL_FREE(kTag, solution);
}

void PlaneXfmZel::set_corner(float x, float y, int corner) {
    if (corner < 1 || corner > 4) return;
    cornerX[kCornerSlot[corner]] = x;
    cornerY[kCornerSlot[corner]] = y;
}

void PlaneXfmZel::find_xfm(int toSquare) {
    // Corners in the order 1, 4, 3, 2 against the square (0,0), (1,0), (1,1), (0,1).
    const int order[4] = {1, 4, 3, 2};
    tagDPT2 corners[4];
    for (int k = 0; k < 4; ++k) {
        corners[k].x = cornerX[kCornerSlot[order[k]]];
        corners[k].y = cornerY[kCornerSlot[order[k]]];
    }
    tagDPT2 square[4] = {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    double* found = toSquare != 0 ? get_matrix(corners, square, 4) : get_matrix(square, corners, 4);
    if (solution != nullptr) ZEL_FREE(kTag, solution);
    solution = found;
}

double* PlaneXfmZel::get_matrix(tagDPT2* p1, tagDPT2* p2, int n) {
    if (n < kMinPoints || p1 == nullptr || p2 == nullptr) return nullptr;
    const int rows = 2 * n;
    double** a = matrix(1, rows, 1, kUnknowns);
    double** v = matrix(1, kUnknowns, 1, kUnknowns);
    double* b = vector(1, rows);
    double* w = vector(1, kUnknowns);
    double* x = vector(1, kUnknowns);
    double* result = nullptr;
    if (a != nullptr && v != nullptr && b != nullptr && w != nullptr && x != nullptr) {
        // u (h6 x + h7 y + 1) = h0 x + h1 y + h2, and likewise for v, as
        // (-x, -y, -1, 0, 0, 0, u x, u y) h = -u and (0, 0, 0, -x, -y, -1, v x, v y) h = -v.
        for (int k = 0; k < n; ++k) {
            const double px = p1[k].x, py = p1[k].y, qu = p2[k].x, qv = p2[k].y;
            double* r1 = a[2 * k + 1];
            double* r2 = a[2 * k + 2];
            const double row1[kUnknowns] = {-px, -py, -1.0, 0.0, 0.0, 0.0, qu * px, qu * py};
            const double row2[kUnknowns] = {0.0, 0.0, 0.0, -px, -py, -1.0, qv * px, qv * py};
            for (int j = 0; j < kUnknowns; ++j) {
                r1[j + 1] = row1[j];
                r2[j + 1] = row2[j];
            }
            b[2 * k + 1] = -qu;
            b[2 * k + 2] = -qv;
        }
        if (svdcmp(a, rows, kUnknowns, w, v) == 0) {
            svbksb(a, w, v, rows, kUnknowns, b, x);
            result = static_cast<double*>(ZEL_MALLOC(kTag, kUnknowns * sizeof(double)));
            if (result != nullptr)
                for (int j = 0; j < kUnknowns; ++j) result[j] = x[j + 1];
        }
    }
    free_matrix(a, 1, rows, 1, kUnknowns);
    free_matrix(v, 1, kUnknowns, 1, kUnknowns);
    free_vector(b, 1, rows);
    free_vector(w, 1, kUnknowns);
    free_vector(x, 1, kUnknowns);
    return result;
}

void PlaneXfmZel::p1_to_p2(tagDPT2* in, tagDPT2* out, int n) {
    if (solution == nullptr) return;
    for (int k = 0; k < n; ++k) mapPoint(solution, in[k], out[k].x, out[k].y);
}

void PlaneXfmZel::p1_to_p2_z(tagDPT2* in, tagDPT3* out, int n) {
    if (solution == nullptr) return;
    for (int k = 0; k < n; ++k) out[k].z = mapPoint(solution, in[k], out[k].x, out[k].y);
}
