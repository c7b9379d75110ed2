// Reconstruction kernels: each mode's kernel w(t), t >= 0, tabulated at
// t = i / 512 for i = 0..1024 as doubles and as 13-bit fixed point.
#include <cmath>

#include "ImageXfmZel.h"

namespace {
const double kTableStep = 0.001953125;  // 1 / 512
const double kSixth = 0.16666666666666666;
const double kPi = 3.141592653589793;
const double kHalfPi = 1.5707963267948966;
const double kCubicA = -0.5;       // cubic convolution of mode 3
const double kSharpCubicA = -1.0;  // mode 4: more overshoot, sharper look
}  // namespace

// The fixed-point entry adds 0.5 and truncates toward zero, so negative
// lobes round differently from positive ones; that rounding is required.
void ImageXfmZel::store_kernel(int index, double w) {
    kernel[index] = w;
    kernelFixed[index] = static_cast<int32_t>(w * kXfmFixedOne + 0.5);
}

void ImageXfmZel::sampleMode(int newMode) {
    if (newMode == mode) return;
    mode = newMode;
    switch (newMode) {
        case XFM_MODE_CUBIC:
            make_bicubic_kernel(kCubicA);
            break;
        case XFM_MODE_SHARP_CUBIC:
            make_bicubic_kernel(kSharpCubicA);
            break;
        case XFM_MODE_BSPLINE:
            make_bspline_kernel();
            break;
        case XFM_MODE_LANCZOS:
            make_lanczos2_kernel();
            break;
        default:
            make_tent_kernel();
            break;
    }
}

// Fills only t = 0..1; entries 513..1024 keep what the previous kernel left
// there (no tent user reads them).
void ImageXfmZel::make_tent_kernel() {
    for (int i = 0; i <= kXfmKernelSteps; ++i) {
        double t = i * kTableStep;
        store_kernel(i, t < 1.0 ? 1.0 - t : 0.0);
    }
    kernelTaps = 3;
    kernelRadius = 1;
}

void ImageXfmZel::make_bicubic_kernel(double a) {
    for (int i = 0; i < kXfmKernelSize; ++i) {
        double t = i * kTableStep;
        double w;
        if (t < 1.0)
            // (a + 2) t^3 - (a + 3) t^2 + 1
            w = (a + 2.0) * t * t * t - (a + 3.0) * t * t + 1.0;
        else if (t < 2.0)
            // a t^3 - 5a t^2 + 8a t - 4a
            w = a * t * t * t - 5.0 * a * t * t + 8.0 * a * t - 4.0 * a;
        else
            w = 0.0;
        store_kernel(i, w);
    }
    kernelTaps = 5;
    kernelRadius = 2;
}

void ImageXfmZel::make_bspline_kernel() {
    for (int i = 0; i < kXfmKernelSize; ++i) {
        double t = i * kTableStep;
        double w;
        if (t < 1.0)
            w = (3.0 * t * t * t - 6.0 * t * t + 4.0) * kSixth;
        else if (t < 2.0)
            w = (6.0 * t * t - t * t * t - 12.0 * t + 8.0) * kSixth;
        else
            w = 0.0;
        store_kernel(i, w);
    }
    kernelTaps = 5;
    kernelRadius = 2;
}

void ImageXfmZel::make_lanczos2_kernel() {
    for (int i = 0; i < kXfmKernelSize; ++i) {
        double t = i * kTableStep;
        double w;
        if (t == 0.0)
            w = 1.0;
        else if (t >= 2.0)
            w = 0.0;
        else
            // sinc(t) * sinc(t / 2)
            w = (std::sin(kPi * t) / (kPi * t)) * (std::sin(kHalfPi * t) / (kHalfPi * t));
        store_kernel(i, w);
    }
    kernelTaps = 5;
    kernelRadius = 2;
}
