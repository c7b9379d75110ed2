// Affine transform composition: construction, reset, the elementary steps,
// their composition into the accumulated matrix, inversion for warping and
// the multi-processing hook.
#include "ImageXfmZel.h"

#include <cmath>
#include <cstring>

namespace {
const double kIdentity[6] = {1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
}

ImageXfmZel::ImageXfmZel()
    : step(),
      product(),
      matrix(),
      inverse(),
      inverseW(0.0),
      composeOrder(1),
      mode(-1),
      kernel(),
      kernelFixed(),
      kernelTaps(0),
      arithmetic(XFM_ARITH_FIXED),
      kernelRadius(0),
      scaling(),
      mpContext(nullptr),
      mpExec(nullptr) {
    // step, product and inverse carry no meaning until set_transform; they are
    // zeroed only so that nothing reads indeterminate memory.
    sampleMode(XFM_MODE_NEAREST);
    set_identity();
}

ImageXfmZel::~ImageXfmZel() {}

// Leaves inverse, inverseW and the executor alone: a warp after a reset
// without a new set_transform uses the previous inverse.
void ImageXfmZel::reset() {
    mode = -1;
    composeOrder = 1;
    arithmetic = XFM_ARITH_FIXED;
    sampleMode(XFM_MODE_NEAREST);
    set_identity();
}

void ImageXfmZel::set_identity() { std::memcpy(matrix, kIdentity, sizeof matrix); }

void ImageXfmZel::translate(double tx, double ty) {
    step[0] = 1.0;
    step[1] = 0.0;
    step[2] = 0.0;
    step[3] = 1.0;
    step[4] = tx;
    step[5] = ty;
    compose();
}

void ImageXfmZel::rotate(double degrees) {
    double theta = degrees * kXfmShortDegToRad;
    double c = std::cos(theta);
    double s = std::sin(theta);
    step[0] = c;
    step[1] = s;
    step[2] = -s;
    step[3] = c;
    step[4] = 0.0;
    step[5] = 0.0;
    compose();
}

void ImageXfmZel::scale(double sx, double sy) {
    step[0] = sx;
    step[1] = 0.0;
    step[2] = 0.0;
    step[3] = sy;
    step[4] = 0.0;
    step[5] = 0.0;
    compose();
}

void ImageXfmZel::shearx(double k) {
    step[0] = 1.0;
    step[1] = 0.0;
    step[2] = k;
    step[3] = 1.0;
    step[4] = 0.0;
    step[5] = 0.0;
    compose();
}

void ImageXfmZel::sheary(double k) {
    step[0] = 1.0;
    step[1] = k;
    step[2] = 0.0;
    step[3] = 1.0;
    step[4] = 0.0;
    step[5] = 0.0;
    compose();
}

void ImageXfmZel::compose() {
    const double a = matrix[0], b = matrix[1], c = matrix[2], d = matrix[3], e = matrix[4],
                 f = matrix[5];
    const double A = step[0], B = step[1], C = step[2], D = step[3], E = step[4], F = step[5];
    if (composeOrder == 1) {
        // matrix * step: the new step acts on the point first.
        product[0] = a * A + c * B;
        product[1] = b * A + d * B;
        product[2] = a * C + c * D;
        product[3] = b * C + d * D;
        product[4] = a * E + c * F + e;
        product[5] = b * E + d * F + f;
    } else {
        // step * matrix: the new step acts last.
        product[0] = A * a + C * b;
        product[1] = B * a + D * b;
        product[2] = A * c + C * d;
        product[3] = B * c + D * d;
        product[4] = A * e + C * f + E;
        product[5] = B * e + D * f + F;
    }
    std::memcpy(matrix, product, sizeof matrix);
}

void ImageXfmZel::set_transform(int how) {
    if (how == 2) {
        std::memcpy(inverse, matrix, sizeof inverse);
        inverseW = 1.0;
        return;
    }
    const double a = matrix[0], b = matrix[1], c = matrix[2], d = matrix[3], e = matrix[4],
                 f = matrix[5];
    double det = a * d - c * b;
    if (std::fabs(det) < kXfmSingularDet) {
        // A (nearly) singular transform silently becomes the identity.
        std::memcpy(inverse, kIdentity, sizeof inverse);
        inverseW = 1.0;
        return;
    }
    double r = 1.0 / det;
    inverse[0] = d * r;
    inverse[1] = -b * r;
    inverse[2] = -c * r;
    inverse[3] = a * r;
    inverse[4] = (c * f - d * e) * r;
    inverse[5] = (b * e - a * f) * r;
    inverseW = det * r;
}

void ImageXfmZel::set_mp_exec(void* context, Executor executor) {
    mpContext = context;
    mpExec = executor;
}

void ImageXfmZel::mp_exec(Worker worker, int count) {
    if (mpExec != nullptr && mpContext != nullptr) {
        mpExec(mpContext, worker, count, this);
        return;
    }
    worker(this, 0, count - 1);
}
