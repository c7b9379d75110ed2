// The Canny edge detector on a float image: an optional Gaussian blur
// (zelGaussianBlur, sigma 0 for none), the gradient with the chosen 3x3
// operator, its magnitude, non-maximum suppression, hysteresis with the two
// thresholds and sub-pixel points (ZelCannySteps.h). Thresholds are gradient
// magnitudes in value per pixel, on the image's own scale (a step of 1
// blurred with sigma 1 peaks at about 0.4). Banded over the host's processors;
// the result does not depend on their number. `edges` keeps its buffers from
// one call to the next while the size holds.
#pragma once

#include "FloatImageZel.h"
#include "ZelEdges.h"
#include "ZelGradient.h"

struct ZelCannySettings {
    float sigma = 1.0f;  // pre-blur; 0 for none
    float low = 0.02f;   // weak edges: magnitude above this
    float high = 0.05f;  // strong edges: magnitude above this
    ZelGradientOperator gradient = ZelGradientOperator::kSobel;
};

// False when the input has no pixels, sigma is negative, low > high, or
// allocation failed.
bool zelCanny(const FloatImageZel& in, const ZelCannySettings& settings, ZelEdges& edges);
