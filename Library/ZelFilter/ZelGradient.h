// Image gradients of a float image with 3x3 operators, as derivative
// estimates in value per pixel (each operator divided by its weight, so a
// linear ramp gives its slope whatever the operator): dx along rows (towards
// larger x), dy down the image (towards larger row numbers). Replicate border.
// Each operator is a difference [-1 0 1] / 2 across, smoothed along the
// other axis with weights (side, centre, side) / sum:
//   central (the plain template): (0, 1, 0)     Prewitt: (1, 1, 1) / 3
//   Sobel: (1, 2, 1) / 4                          Scharr: (3, 10, 3) / 16
// So Sobel's dx is OpenCV's Sobel(dx = 1, ksize 3) divided by 8, Scharr's by 32.
// Magnitude sqrt(dx^2 + dy^2) and direction atan2(dy, dx) in radians
// (-pi .. pi, 0 along +x, pi/2 along +y). Banded; outputs are resized and
// must not be the input; false on missing pixels, size mismatch or allocation failure.
#pragma once

#include "FloatImageZel.h"

enum class ZelGradientOperator { kCentral, kPrewitt, kSobel, kScharr };

struct ZelGradientWeights;
// The operator's smoothing weights and scale (see ZelGradientRows.h).
ZelGradientWeights zelGradientWeights(ZelGradientOperator op);
// dx, dy and magnitude of row y, each `in.width()` values. `across` and
// `down` are working rows of in.width() + 2 floats.
void zelGradientRow(const FloatImageZel& in, const ZelGradientWeights& w, long y, float* dx,
                    float* dy, float* magnitude, float* across, float* down);
// dx, dy and magnitude at one pixel (x, y), the same bits as the rows give.
void zelGradientAt(const FloatImageZel& in, const ZelGradientWeights& w, long x, long y, float& dx,
                   float& dy, float& magnitude);

// With `magnitude`, also the magnitude, computed row by row while dx and dy
// are at hand (the same values as zelGradientMagnitude).
bool zelGradient(const FloatImageZel& in, ZelGradientOperator op, FloatImageZel& dx,
                 FloatImageZel& dy, FloatImageZel* magnitude = nullptr);
bool zelGradientMagnitude(const FloatImageZel& dx, const FloatImageZel& dy,
                          FloatImageZel& magnitude);
bool zelGradientDirection(const FloatImageZel& dx, const FloatImageZel& dy,
                          FloatImageZel& direction);
