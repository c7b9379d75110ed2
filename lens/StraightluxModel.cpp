#include "StraightluxModel.h"

#include <cmath>

namespace {

// R² is the sum of the squared half sides of the frame.
constexpr double kQuarter = 0.25;

// The forward polynomial in normalised units:
//   fx = p + (k1·p² + A·q² + k2·r⁴)·p,  fy = q + (a·p² + B·q² + b·r⁴)·q,  r² = p² + q².
template <typename Coefficients>
void evaluateForward(const Coefficients& c, double p, double q, double& fx, double& fy) {
    const double p2 = p * p;
    const double q2 = q * q;
    const double r2 = p2 + q2;
    const double r4 = r2 * r2;
    fx = p + (c.k1 * p2 + c.A * q2 + c.k2 * r4) * p;
    fy = q + (c.a * p2 + c.B * q2 + c.b * r4) * q;
}

// Inverse of the Jacobian of the forward polynomial at (p, q); false, with
// nothing written, when the determinant is too small to divide by.
//   Jxx = 1 + 3·k1·p² + A·q² + k2·(5p⁴ + 6p²q² + q⁴),  Jxy = 2·A·p·q + 4·k2·(p³q + pq³)
//   Jyx = 2·a·p·q + 4·b·(p³q + pq³),  Jyy = 1 + a·p² + 3·B·q² + b·(p⁴ + 6p²q² + 5q⁴)
bool invertJacobian(const StraightluxModel::InversePlan& c, double p, double q, double& i00,
                    double& i01, double& i10, double& i11) {
    const double p2 = p * p;
    const double q2 = q * q;
    const double p4 = p2 * p2;
    const double q4 = q2 * q2;
    const double p2q2 = p2 * q2;
    const double mixed = p2 * p * q + p * q2 * q;  // p³q + pq³

    const double jxx = 1.0 + c.jxxP2 * p2 + c.A * q2 + c.k2 * (5.0 * p4 + 6.0 * p2q2 + q4);
    const double jxy = c.jxyPQ * p * q + c.jxyMixed * mixed;
    const double jyx = c.jyxPQ * p * q + c.jyxMixed * mixed;
    const double jyy = 1.0 + c.a * p2 + c.jyyQ2 * q2 + c.b * (p4 + 6.0 * p2q2 + 5.0 * q4);

    const double det = jxx * jyy - jxy * jyx;
    if (std::fabs(det) < StraightluxModel::kSingularDeterminant) return false;

    const double inverseDet = 1.0 / det;
    i00 = jyy * inverseDet;
    i01 = -jxy * inverseDet;
    i10 = -jyx * inverseDet;
    i11 = jxx * inverseDet;
    return true;
}

// The seed of the inverse at the normalised target (u, v); see FindInitialPxPy.
void seedInverse(const StraightluxModel::InversePlan& c, double u, double v, double& pu,
                 double& pv) {
    const double u2 = u * u;
    const double v2 = v * v;
    const double u4 = u2 * u2;
    const double v4 = v2 * v2;
    const double u2v2 = u2 * v2;
    pu = u * (1.0 - c.k1 * u2 - c.A * v2 + c.puU4 * u4 + c.puU2V2 * u2v2 + c.puV4 * v4);
    pv = v * (1.0 - c.a * u2 - c.B * v2 + c.pvU4 * u4 + c.pvU2V2 * u2v2 + c.pvV4 * v4);
}

}  // namespace

double StraightluxModel::normalisingRadius() const {
    // The quotients are single precision; the squares and the sum are double.
    const float scaledWidth = width / normScale;
    const float scaledHeight = height / normScale;
    return std::sqrt(kQuarter * scaledWidth * scaledWidth + kQuarter * scaledHeight * scaledHeight);
}

StraightluxModel::Coefficients StraightluxModel::deriveCoefficients() const {
    Coefficients c;
    c.k1 = radial1;
    c.k2 = radial2;
    c.A = (1.0 + xCurvature) * c.k1;
    // Squeeze divides only the vertical coefficients; curvatures weight only the q² terms.
    c.a = c.k1 / squeeze;
    c.b = radial2 / squeeze;
    c.B = (1.0 + yCurvature) * c.a;
    return c;
}

void StraightluxModel::loadControls(double centreXFraction, double centreYFraction,
                                    double squeezeValue, double radial1Value, double radial2Value,
                                    double xCurvatureValue, double yCurvatureValue) {
    // The centre control holds fractions of the frame; the model works in pixels.
    centreX = static_cast<float>(width * centreXFraction);
    centreY = static_cast<float>(height * centreYFraction);
    squeeze = static_cast<float>(squeezeValue);
    radial1 = static_cast<float>(radial1Value);
    radial2 = static_cast<float>(radial2Value);
    xCurvature = static_cast<float>(xCurvatureValue);
    yCurvature = static_cast<float>(yCurvatureValue);
}

void StraightluxModel::MapUndistortedToDistorted(tagDPT2 in, tagDPT2& out) const {
    const Coefficients c = deriveCoefficients();
    const double R = normalisingRadius();
    const double inverseR = 1.0 / R;
    const double u = (in.x - centreX) * inverseR;
    const double v = (in.y - centreY) * inverseR;

    double fx = 0.0;
    double fy = 0.0;
    evaluateForward(c, u, v, fx, fy);
    out.x = fx * R + centreX;
    out.y = fy * R + centreY;
}

StraightluxModel::InversePlan StraightluxModel::makeInversePlan() const {
    const Coefficients d = deriveCoefficients();
    InversePlan c;
    c.R = normalisingRadius();
    c.inverseR = 1.0 / c.R;
    c.centreX = centreX;
    c.centreY = centreY;
    const double k1 = d.k1, k2 = d.k2, A = d.A, a = d.a, B = d.B, b = d.b;
    c.k1 = k1;
    c.k2 = k2;
    c.A = A;
    c.a = a;
    c.B = B;
    c.b = b;

    // Third-order series reversion of the forward polynomial. Where the seed
    // coefficients come from: the forward model is u = p·(1 + k1·p² + A·q² + k2·r⁴),
    // v = q·(1 + a·p² + B·q² + b·r⁴) with r² = p² + q², so p = u − p·(k1·p² + A·q²
    // + k2·r⁴) and q = v − q·(a·p² + B·q² + b·r⁴). One step from p = u, q = v gives
    // p1 = u·(1 − α), q1 = v·(1 − β) with α = k1·u² + A·v², β = a·u² + B·v². A
    // second step, keeping terms up to fifth order (p1³ ≈ u³·(1 − 3α),
    // p1·q1² ≈ u·v²·(1 − α − 2β), p1²·q1 ≈ u²·v·(1 − 2α − β), q1³ ≈ v³·(1 − 3β)):
    //   pu/u = 1 − k1·u² − A·v² + 3k1·α·u² + A·v²·(α + 2β) − k2·(u² + v²)²
    //        → u⁴: 3k1² − k2;  u²v²: 4k1·A + 2a·A − 2k2;  v⁴: A² + 2A·B − k2
    //   pv/v = 1 − a·u² − B·v² + a·u²·(2α + β) + 3B·β·v² − b·(u² + v²)²
    //        → u⁴: a² + 2k1·a − b;  u²v²: 4a·B + 2a·A − 2b;  v⁴: 3B² − b
    // (4k1·A is written 4·(1 + xCurvature)·k1², since A = (1 + xCurvature)·k1.)
    c.puU4 = 3.0 * k1 * k1 - k2;
    c.puU2V2 = 4.0 * (1.0 + xCurvature) * k1 * k1 + 2.0 * a * A - 2.0 * k2;
    c.puV4 = A * A + 2.0 * A * B - k2;
    c.pvU4 = a * a + 2.0 * k1 * a - b;
    // The u²v² term subtracts 2·k2, not the 2·b of the expansion above: the
    // unscaled coefficient is kept on purpose.
    c.pvU2V2 = 4.0 * a * B + 2.0 * a * A - 2.0 * k2;
    c.pvV4 = 3.0 * B * B - b;

    c.jxxP2 = 3.0 * k1;
    c.jxyPQ = 2.0 * A;
    c.jxyMixed = 4.0 * k2;
    c.jyxPQ = 2.0 * a;
    c.jyxMixed = 4.0 * b;
    c.jyyQ2 = 3.0 * B;
    return c;
}

void StraightluxModel::FindInitialPxPy(double u, double v, double& pu, double& pv) const {
    seedInverse(makeInversePlan(), u, v, pu, pv);
}

bool StraightluxModel::FindInverseDerivativesMatrix(double& pu, double& pv, double& i00,
                                                    double& i01, double& i10, double& i11) const {
    return invertJacobian(makeInversePlan(), pu, pv, i00, i01, i10, i11);
}

int32_t StraightluxModel::MapDistortedToUndistorted(tagDPT2 in, tagDPT2& out) {
    int32_t corrections = 0;
    const int32_t status = solveInverse(makeInversePlan(), in, out, corrections);
    iterationTotal += corrections;
    return status;
}

int32_t StraightluxModel::solveInverse(const InversePlan& c, tagDPT2 in, tagDPT2& out,
                                       int32_t& corrections) {
    const double u = (in.x - c.centreX) * c.inverseR;
    const double v = (in.y - c.centreY) * c.inverseR;

    double pu = 0.0;
    double pv = 0.0;
    seedInverse(c, u, v, pu, pv);

    // Newton: p ← p − J⁻¹·(f(p) − target). A correction that is already below
    // the tolerance ends the loop without being applied.
    int32_t status = 0;
    corrections = 0;
    for (;;) {
        double fx = 0.0;
        double fy = 0.0;
        evaluateForward(c, pu, pv, fx, fy);
        double i00 = 0.0, i01 = 0.0, i10 = 0.0, i11 = 0.0;
        if (!invertJacobian(c, pu, pv, i00, i01, i10, i11)) {
            status = kInverseSingular;
            break;
        }
        const double ex = fx - u;
        const double ey = fy - v;
        const double dx = i00 * ex + i01 * ey;
        const double dy = i10 * ex + i11 * ey;
        if (std::fabs(dx) < kConvergenceTolerance && std::fabs(dy) < kConvergenceTolerance) {
            status = corrections;
            break;
        }
        ++corrections;
        pu -= dx;
        pv -= dy;
        if (corrections == kMaxCorrections) break;
    }

    if (corrections == kMaxCorrections) status = kInverseNotConverged;
    if (status == kInverseSingular) return status;

    out.x = c.R * pu + c.centreX;
    out.y = c.R * pv + c.centreY;
    return status;
}

StraightluxModel::FloatCoefficients StraightluxModel::makeFloatCoefficients() const {
    FloatCoefficients c;
    c.R = static_cast<float>(normalisingRadius());
    c.inverseR = 1.0f / c.R;
    c.centreX = centreX;
    c.centreY = centreY;
    c.k1 = radial1;
    c.k2 = radial2;
    c.A = (1.0f + xCurvature) * radial1;
    c.a = radial1 / squeeze;
    c.b = radial2 / squeeze;
    c.B = (1.0f + yCurvature) * c.a;
    return c;
}
