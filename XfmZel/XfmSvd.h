// Least-squares linear algebra for the planar homography: singular value
// decomposition (Householder bidiagonalisation followed by implicit-shift QR)
// and back-substitution, on 1-based matrices and vectors. Matrices are row
// pointer tables usable as m[i][j] for the index ranges they were made with;
// storage comes from the tracked heap under the tag "XfmZel". Lower index
// bounds must not be negative.
#pragma once

// Rows rowLow..rowHigh, columns colLow..colHigh; null on failure.
double** matrix(int rowLow, int rowHigh, int colLow, int colHigh);
void free_matrix(double** m, int rowLow, int rowHigh, int colLow, int colHigh);
// Entries low..high; null on failure.
double* vector(int low, int high);
void free_vector(double* v, int low, int high);

// a[1..m][1..n] = U diag(w[1..n]) V^T; U replaces a, v is n x n. Singular
// values come out non-negative and unsorted. Returns 0 on success, 1 if a
// singular value does not converge within 30 QR sweeps.
int svdcmp(double** a, int m, int n, double* w, double** v);
// x[1..n] = V diag(1/w) U^T b[1..m], skipping singular values exactly 0.
void svbksb(double** u, double* w, double** v, int m, int n, double* b, double* x);
