// The lens model: two radial coefficients, two curvatures, an anamorphic
// squeeze and a centre, mapping undistorted frame positions to distorted ones
// and back. Points are in pixels (column i, row j is the point (i, j), no
// half-pixel offset); internally they are normalised by R, half the frame
// diagonal divided by `normScale`, about the centre. The inverse is Newton's
// method seeded by a closed-form series reversion. The plug-in class derives
// from this and loads the fields from its controls.
#pragma once

#include <cstdint>

#include "tagDPT.h"

class StraightluxModel {
  public:
    // Results of MapDistortedToUndistorted below 0 (0…49 count the corrections).
    static constexpr int32_t kInverseSingular = -1;
    static constexpr int32_t kInverseNotConverged = -2;
    static constexpr int32_t kMaxCorrections = 50;
    // Newton stops when both components of a correction are below this, in normalised units.
    static constexpr double kConvergenceTolerance = 1e-6;
    // A Jacobian whose determinant is below this in magnitude counts as singular.
    static constexpr double kSingularDeterminant = 1e-10;

    // The forward formula's constants in single precision, computed once per
    // address map so that the per-pixel loop only evaluates the polynomial.
    struct FloatCoefficients {
        float R, inverseR, centreX, centreY, k1, k2, A, a, b, B;
    };

    // Everything of the inverse that does not depend on the point: R, the
    // coefficients and the constant factors of the seed and of the Jacobian,
    // each computed once exactly as a single call computes it (the same
    // operations in the same order), so that a whole map runs only the
    // per-point solve. A plan is only read, so bands may solve at once.
    struct InversePlan {
        double R, inverseR;
        double centreX, centreY;
        double k1, k2, A, a, B;
        double b;  // the single-precision k2 / squeeze, widened
        // Seed: the u⁴, u²v², v⁴ factors of pu and of pv.
        double puU4, puU2V2, puV4;
        double pvU4, pvU2V2, pvV4;
        // Jacobian: 3·k1, 2·A, 4·k2, 2·a, 4·b, 3·B.
        double jxxP2, jxyPQ, jxyMixed, jyxPQ, jyxMixed, jyyQ2;
    };

    // Loads the model for a frame of width x height (set first) from the lens
    // controls' values, as each frame does: the centre in fractions of the
    // frame, the rest as the controls hold them.
    void loadControls(double centreXFraction, double centreYFraction, double squeezeValue,
                      double radial1Value, double radial2Value, double xCurvatureValue,
                      double yCurvatureValue);

    void MapUndistortedToDistorted(tagDPT2 in, tagDPT2& out) const;
    // 0…49 on success; kInverseSingular leaves `out` untouched; kInverseNotConverged
    // writes the last iterate. Adds the corrections made to iterationTotal.
    int32_t MapDistortedToUndistorted(tagDPT2 in, tagDPT2& out);
    // Seed of the inverse at the normalised point (u, v), in normalised units.
    void FindInitialPxPy(double u, double v, double& pu, double& pv) const;
    // Inverse of the forward Jacobian at the normalised point; false (nothing written) if singular.
    bool FindInverseDerivativesMatrix(double& pu, double& pv, double& i00, double& i01, double& i10,
                                      double& i11) const;

    InversePlan makeInversePlan() const;
    // MapDistortedToUndistorted with a plan: the same status and output, and
    // the corrections made in `corrections` instead of added to iterationTotal.
    static int32_t solveInverse(const InversePlan& plan, tagDPT2 in, tagDPT2& out,
                                int32_t& corrections);

    FloatCoefficients makeFloatCoefficients() const;
    // The same formula as MapUndistortedToDistorted, evaluated in single precision.
    static void mapUndistortedToDistortedFloat(const FloatCoefficients& c, float x, float y,
                                               float& outX, float& outY) {
        const float u = (x - c.centreX) * c.inverseR;
        const float v = (y - c.centreY) * c.inverseR;
        const float u2 = u * u;
        const float v2 = v * v;
        const float r2 = u2 + v2;
        const float r4 = r2 * r2;
        outX = (u + (c.k1 * u2 + c.A * v2 + c.k2 * r4) * u) * c.R + c.centreX;
        outY = (v + (c.a * u2 + c.B * v2 + c.b * r4) * v) * c.R + c.centreY;
    }

    int32_t width = 0;  // frame size in pixels
    int32_t height = 0;
    float centreX = 0.0f;  // distortion centre in pixels
    float centreY = 0.0f;
    float normScale = 1.0f;       // divides the frame size in R
    float squeeze = 1.0f;         // divides the vertical coefficients only
    float radial1 = 0.0f;         // k1, third-order term
    float radial2 = 0.0f;         // k2, fifth-order term
    float xCurvature = 0.0f;      // extra weight of v² in the horizontal displacement
    float yCurvature = 0.0f;      // extra weight of v² in the vertical displacement
    double iterationTotal = 0.0;  // running sum of Newton corrections

  private:
    // Derived coefficients; b alone is held in single precision.
    struct Coefficients {
        double k1, k2, A, a, B;
        float b;
    };

    double normalisingRadius() const;
    Coefficients deriveCoefficients() const;
};
