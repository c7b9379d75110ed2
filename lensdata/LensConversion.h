// Turns a lens described by another program into the plug-in's controls for
// one frame size, and measures how well the plug-in then reproduces it.
// Positions are in the plug-in's pixels (integer centres, rows from the
// bottom; see LensConventions.h). Residuals are in pixels of the plate: the
// distance between where the plug-in's correcting map samples and where the
// other program's correction samples, over a grid of the frame.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "LensDataStatus.h"
#include "LensSetup.h"
#include "RadialFit.h"
#include "tagDPT.h"

// Which plug-in mode corrects the plate with a converted set-up. The plug-in's
// polynomial runs the other way round from OpenCV's and lensfun's (see
// LensConventions.h), so a lens is either taken over as it is and corrects
// in Mode Add, or inverted and corrects in Mode Remove, the plug-in's usual
// use; the inverse of a polynomial is not one, so the second is always a fit.
enum class CorrectingMode {
    kAdd,     // exact where the models agree (pure radial k1, k2)
    kRemove,  // always fitted
};

// A lens as another program computes it, for one frame, in the plug-in's pixels.
struct ReferenceLens {
    tagDPT2 centre = {0.0, 0.0};
    // Undistorted -> distorted (where the correction samples the plate), in place.
    std::function<void(std::vector<tagDPT2>&)> distort;
    // Distorted -> undistorted, in place.
    std::function<void(std::vector<tagDPT2>&)> undistort;
    // Set when the lens is exactly p (1 + k1 r^2 + k2 r^4) with r in units of unitRadius.
    bool radialOnly = false;
    RadialTerms terms;
    double unitRadius = 1.0;
};

struct LensConversion {
    LensSetup setup;
    bool exact = false;  // the coefficients were rescaled, not fitted
    Residual residual;
};

// Grid density of fits and residuals: points along the frame's longer side.
constexpr int kConversionGridPoints = 129;

LensDataStatus convertReference(const ReferenceLens& lens, int32_t width, int32_t height,
                                CorrectingMode mode, LensConversion& conversion);

// How far the correcting map of `setup` (its Mode: Add samples through the
// polynomial, Remove and Auto Remove through its inverse) lies from the
// reference's, over the frame.
Residual correctionResidual(const LensSetup& setup, int32_t width, int32_t height,
                            const ReferenceLens& lens);
