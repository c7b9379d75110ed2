// Singular value decomposition by Golub-Reinsch: Householder reflections
// reduce A to an upper bidiagonal B = U^T A V, then implicit-shift QR sweeps
// (Givens rotations chasing a bulge down the band) drive the superdiagonal
// to zero. U is built in place of A. All arrays are 1-based.
#include "XfmSvd.h"

#include <algorithm>
#include <cmath>

#include "zel_heap.h"

namespace {

const char* const kTag = "XfmZel";
const int kMaxSweeps = 30;

inline bool negligible(double x, double norm) { return std::fabs(x) + norm == norm; }

// Reflection H = I - u u^T / h that maps x to alpha e1, alpha = -sign(x1) |x|.
// With u = x - alpha e1, h = |x|^2 - alpha x1 = -alpha u1. The vector is
// scaled by the sum of magnitudes while it is formed, to avoid overflow.

// Left reflection on column k, rows k..m; applied to columns k+1..n. The
// (unscaled) u stays in column k. Returns alpha, 0 when the column is zero.
double reflectColumn(double** a, int m, int n, int k) {
    if (k > m) return 0.0;
    double scale = 0.0;
    for (int i = k; i <= m; ++i) scale += std::fabs(a[i][k]);
    if (scale == 0.0) return 0.0;
    double norm2 = 0.0;
    for (int i = k; i <= m; ++i) {
        a[i][k] /= scale;
        norm2 += a[i][k] * a[i][k];
    }
    const double x1 = a[k][k];
    const double alpha = x1 >= 0.0 ? -std::sqrt(norm2) : std::sqrt(norm2);
    const double h = norm2 - x1 * alpha;
    a[k][k] = x1 - alpha;
    for (int j = k + 1; j <= n; ++j) {
        double s = 0.0;
        for (int i = k; i <= m; ++i) s += a[i][k] * a[i][j];
        const double f = s / h;
        for (int i = k; i <= m; ++i) a[i][j] -= f * a[i][k];
    }
    for (int i = k; i <= m; ++i) a[i][k] *= scale;
    return alpha * scale;
}

// Right reflection on row k, columns k+1..n; applied to rows k+1..m. The
// (unscaled) u stays in row k. Returns alpha, 0 when the row part is zero.
double reflectRow(double** a, int m, int n, int k) {
    if (k > m || k >= n) return 0.0;
    double scale = 0.0;
    for (int j = k + 1; j <= n; ++j) scale += std::fabs(a[k][j]);
    if (scale == 0.0) return 0.0;
    double norm2 = 0.0;
    for (int j = k + 1; j <= n; ++j) {
        a[k][j] /= scale;
        norm2 += a[k][j] * a[k][j];
    }
    const double x1 = a[k][k + 1];
    const double alpha = x1 >= 0.0 ? -std::sqrt(norm2) : std::sqrt(norm2);
    const double h = norm2 - x1 * alpha;
    a[k][k + 1] = x1 - alpha;
    for (int i = k + 1; i <= m; ++i) {
        double s = 0.0;
        for (int j = k + 1; j <= n; ++j) s += a[i][j] * a[k][j];
        const double f = s / h;
        for (int j = k + 1; j <= n; ++j) a[i][j] -= f * a[k][j];
    }
    for (int j = k + 1; j <= n; ++j) a[k][j] *= scale;
    return alpha * scale;
}

// V = P1 P2 ... built from the back: each P_k only touches indices k+1..n.
void accumulateRight(double** a, int n, const double* e, double** v) {
    for (int k = n; k >= 1; --k) {
        if (k < n && e[k + 1] != 0.0) {
            const double h = -e[k + 1] * a[k][k + 1];
            for (int j = k + 1; j <= n; ++j) {
                double s = 0.0;
                for (int i = k + 1; i <= n; ++i) s += a[k][i] * v[i][j];
                const double f = s / h;
                for (int i = k + 1; i <= n; ++i) v[i][j] -= f * a[k][i];
            }
        }
        for (int j = k + 1; j <= n; ++j) v[k][j] = v[j][k] = 0.0;
        v[k][k] = 1.0;
    }
}

// U = Q1 Q2 ... Qn [I; 0] built from the back in place of a: step k fills
// column k (rows k..m) and row k (columns k+1..n).
void accumulateLeft(double** a, int m, int n, const double* w) {
    for (int k = n; k > m; --k)
        for (int i = 1; i <= m; ++i) a[i][k] = 0.0;
    for (int k = std::min(m, n); k >= 1; --k) {
        if (w[k] == 0.0) {
            for (int j = k + 1; j <= n; ++j) a[k][j] = 0.0;
            for (int i = k + 1; i <= m; ++i) a[i][k] = 0.0;
            a[k][k] = 1.0;
            continue;
        }
        const double uk = a[k][k];
        const double h = -w[k] * uk;
        for (int j = k + 1; j <= n; ++j) {
            double s = 0.0;
            for (int i = k + 1; i <= m; ++i) s += a[i][k] * a[i][j];
            const double f = s / h;
            for (int i = k + 1; i <= m; ++i) a[i][j] -= f * a[i][k];
            a[k][j] = -f * uk;
        }
        for (int i = k + 1; i <= m; ++i) a[i][k] = -a[i][k] * uk / h;
        a[k][k] = 1.0 - uk * uk / h;
    }
}

// Plane rotation of columns p and q of an rows-high matrix:
// col_p <- c col_p + s col_q, col_q <- c col_q - s col_p.
inline void rotateColumns(double** x, int rows, int p, int q, double c, double s) {
    for (int j = 1; j <= rows; ++j) {
        const double xp = x[j][p], xq = x[j][q];
        x[j][p] = c * xp + s * xq;
        x[j][q] = c * xq - s * xp;
    }
}

// d[l-1] is negligible: rotations of row l-1 against rows l..k move e[l]
// along row l-1 until it vanishes, splitting the block at l.
void cancelCoupling(double** u, int m, double* d, double* e, int l, int k, double norm) {
    double c = 0.0, s = 1.0;
    for (int i = l; i <= k; ++i) {
        const double f = s * e[i];
        e[i] = c * e[i];
        if (negligible(f, norm)) break;
        const double g = d[i];
        const double h = std::hypot(f, g);
        d[i] = h;
        c = g / h;
        s = -f / h;
        rotateColumns(u, m, l - 1, i, c, s);
    }
}

// One implicit QR step on the unreduced block l..k, shifted by the
// eigenvalue of the trailing 2x2 of B^T B nearer its last diagonal entry.
void qrSweep(double** u, double** v, int m, int n, double* d, double* e, int l, int k) {
    const double ePrev = k - 1 > l ? e[k - 1] : 0.0;
    const double t11 = d[k - 1] * d[k - 1] + ePrev * ePrev;
    const double t12 = d[k - 1] * e[k];
    const double t22 = d[k] * d[k] + e[k] * e[k];
    const double half = 0.5 * (t11 - t22);
    const double root = std::hypot(half, t12);
    const double denom = half >= 0.0 ? half + root : half - root;
    const double shift = denom != 0.0 ? t22 - t12 * t12 / denom : t22;

    // First column of B^T B - shift I decides the first rotation.
    double y = d[l] * d[l] - shift;
    double z = d[l] * e[l + 1];
    for (int i = l; i < k; ++i) {
        // Right rotation of columns i, i+1 removes the bulge z at (i-1, i+1).
        const double r = std::hypot(y, z);
        const double c = r != 0.0 ? y / r : 1.0;
        const double s = r != 0.0 ? z / r : 0.0;
        if (i > l) e[i] = r;
        const double diag = c * d[i] + s * e[i + 1];
        const double super = c * e[i + 1] - s * d[i];
        const double below = s * d[i + 1];
        const double next = c * d[i + 1];
        rotateColumns(v, n, i, i + 1, c, s);
        // Left rotation of rows i, i+1 removes the bulge at (i+1, i).
        const double r2 = std::hypot(diag, below);
        const double c2 = r2 != 0.0 ? diag / r2 : 1.0;
        const double s2 = r2 != 0.0 ? below / r2 : 0.0;
        d[i] = r2;
        e[i + 1] = c2 * super + s2 * next;
        d[i + 1] = c2 * next - s2 * super;
        rotateColumns(u, m, i, i + 1, c2, s2);
        if (i + 1 < k) {
            z = s2 * e[i + 2];
            e[i + 2] = c2 * e[i + 2];
            y = e[i + 1];
        }
    }
    e[l] = 0.0;
}

}  // namespace

double** matrix(int rowLow, int rowHigh, int colLow, int colHigh) {
    if (rowLow < 0 || colLow < 0 || rowHigh < rowLow || colHigh < colLow) return nullptr;
    // Slots below the low bounds are allocated but unused, so indices need no offset.
    double** m = static_cast<double**>(ZEL_CALLOC(kTag, rowHigh + 1, sizeof(double*)));
    if (m == nullptr) return nullptr;
    for (int i = rowLow; i <= rowHigh; ++i) {
        m[i] = static_cast<double*>(ZEL_CALLOC(kTag, colHigh + 1, sizeof(double)));
        if (m[i] == nullptr) {
            free_matrix(m, rowLow, i - 1, colLow, colHigh);
            return nullptr;
        }
    }
    return m;
}

void free_matrix(double** m, int rowLow, int rowHigh, int, int) {
    if (m == nullptr) return;
    for (int i = rowLow; i <= rowHigh; ++i)
        if (m[i] != nullptr) ZEL_FREE(kTag, m[i]);
    ZEL_FREE(kTag, m);
}

double* vector(int low, int high) {
    if (low < 0 || high < low) return nullptr;
    return static_cast<double*>(ZEL_CALLOC(kTag, high + 1, sizeof(double)));
}

void free_vector(double* v, int, int) {
    if (v != nullptr) ZEL_FREE(kTag, v);
}

int svdcmp(double** a, int m, int n, double* w, double** v) {
    double* e = vector(1, n);  // e[k] couples columns k-1 and k of B; e[1] = 0
    if (e == nullptr) return 1;

    for (int k = 1; k <= n; ++k) {
        w[k] = reflectColumn(a, m, n, k);
        if (k < n) e[k + 1] = reflectRow(a, m, n, k);
    }
    accumulateRight(a, n, e, v);
    accumulateLeft(a, m, n, w);

    double norm = 0.0;
    for (int k = 1; k <= n; ++k) norm = std::max(norm, std::fabs(w[k]) + std::fabs(e[k]));

    for (int k = n; k >= 1; --k) {
        for (int sweep = 0;; ++sweep) {
            // Find the top l of the unreduced block ending at k.
            int l = k;
            bool cancel = false;
            for (; l >= 1; --l) {
                if (negligible(e[l], norm)) break;  // always true at l = 1
                if (negligible(w[l - 1], norm)) {
                    cancel = true;
                    break;
                }
            }
            if (cancel) cancelCoupling(a, m, w, e, l, k, norm);
            if (l == k) {
                if (w[k] < 0.0) {
                    w[k] = -w[k];
                    for (int j = 1; j <= n; ++j) v[j][k] = -v[j][k];
                }
                break;
            }
            if (sweep == kMaxSweeps) {
                free_vector(e, 1, n);
                return 1;
            }
            qrSweep(a, v, m, n, w, e, l, k);
        }
    }
    free_vector(e, 1, n);
    return 0;
}

void svbksb(double** u, double* w, double** v, int m, int n, double* b, double* x) {
    double* t = vector(1, n);
    if (t == nullptr) return;
    // t = diag(1/w) U^T b, leaving out exactly-zero singular values.
    for (int j = 1; j <= n; ++j) {
        double s = 0.0;
        if (w[j] != 0.0) {
            for (int i = 1; i <= m; ++i) s += u[i][j] * b[i];
            s /= w[j];
        }
        t[j] = s;
    }
    for (int j = 1; j <= n; ++j) {
        double s = 0.0;
        for (int k = 1; k <= n; ++k) s += v[j][k] * t[k];
        x[j] = s;
    }
    free_vector(t, 1, n);
}
