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
template <typename Coefficients>
bool invertJacobian(const Coefficients& c, double p, double q, double& i00, double& i01,
                    double& i10, double& i11) {
    const double p2 = p * p;
    const double q2 = q * q;
    const double p4 = p2 * p2;
    const double q4 = q2 * q2;
    const double p2q2 = p2 * q2;
    const double mixed = p2 * p * q + p * q2 * q;  // p³q + pq³

    const double jxx = 1.0 + 3.0 * c.k1 * p2 + c.A * q2 + c.k2 * (5.0 * p4 + 6.0 * p2q2 + q4);
    const double jxy = 2.0 * c.A * p * q + 4.0 * c.k2 * mixed;
    const double jyx = 2.0 * c.a * p * q + 4.0 * c.b * mixed;
    const double jyy = 1.0 + c.a * p2 + 3.0 * c.B * q2 + c.b * (p4 + 6.0 * p2q2 + 5.0 * q4);

    const double det = jxx * jyy - jxy * jyx;
    if (std::fabs(det) < StraightluxModel::kSingularDeterminant) return false;

    const double inverseDet = 1.0 / det;
    i00 = jyy * inverseDet;
    i01 = -jxy * inverseDet;
    i10 = -jyx * inverseDet;
    i11 = jxx * inverseDet;
    return true;
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

void StraightluxModel::FindInitialPxPy(double u, double v, double& pu, double& pv) const {
    const Coefficients c = deriveCoefficients();
    const double k1 = c.k1, k2 = c.k2, A = c.A, a = c.a, B = c.B, b = c.b;
    const double u2 = u * u;
    const double v2 = v * v;
    const double u4 = u2 * u2;
    const double v4 = v2 * v2;
    const double u2v2 = u2 * v2;

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
    pu = u * (1.0 - k1 * u2 - A * v2 + (3.0 * k1 * k1 - k2) * u4 +
              (4.0 * (1.0 + xCurvature) * k1 * k1 + 2.0 * a * A - 2.0 * k2) * u2v2 +
              (A * A + 2.0 * A * B - k2) * v4);
    // The u²v² term subtracts 2·k2, not the 2·b of the expansion above: the
    // unscaled coefficient is kept on purpose.
    pv = v * (1.0 - a * u2 - B * v2 + (a * a + 2.0 * k1 * a - b) * u4 +
              (4.0 * a * B + 2.0 * a * A - 2.0 * k2) * u2v2 + (3.0 * B * B - b) * v4);
}

bool StraightluxModel::FindInverseDerivativesMatrix(double& pu, double& pv, double& i00,
                                                    double& i01, double& i10, double& i11) const {
    return invertJacobian(deriveCoefficients(), pu, pv, i00, i01, i10, i11);
}

int32_t StraightluxModel::MapDistortedToUndistorted(tagDPT2 in, tagDPT2& out) {
    const Coefficients c = deriveCoefficients();
    const double R = normalisingRadius();
    const double inverseR = 1.0 / R;
    const double u = (in.x - centreX) * inverseR;
    const double v = (in.y - centreY) * inverseR;

    double pu = 0.0;
    double pv = 0.0;
    FindInitialPxPy(u, v, pu, pv);

    // Newton: p ← p − J⁻¹·(f(p) − target). A correction that is already below
    // the tolerance ends the loop without being applied.
    int32_t status = 0;
    int32_t corrections = 0;
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

    iterationTotal += corrections;
    if (corrections == kMaxCorrections) status = kInverseNotConverged;
    if (status == kInverseSingular) return status;

    out.x = R * pu + centreX;
    out.y = R * pv + centreY;
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
