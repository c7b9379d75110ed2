#include "LensConversion.h"

#include <cmath>
#include <sstream>

#include "LensConventions.h"
#include "StMap.h"

namespace {

// The plug-in's radius 1 for a frame: half its diagonal, as its model computes it.
double straightluxUnitRadius(const StraightluxModel& model) { return model.makeInversePlan().R; }

}  // namespace

Residual correctionResidual(const LensSetup& setup, int32_t width, int32_t height,
                            const ReferenceLens& lens) {
    const std::vector<tagDPT2> grid = frameGrid(width, height, kConversionGridPoints);
    const StMapSampler sampler(setup, width, height);
    std::vector<tagDPT2> got;
    got.reserve(grid.size());
    for (const tagDPT2& p : grid)
        got.push_back(sampler.sourceOf(static_cast<int32_t>(p.x), static_cast<int32_t>(p.y)));
    std::vector<tagDPT2> want = grid;
    lens.distort(want);
    return residualOf(got, want);
}

LensDataStatus convertReference(const ReferenceLens& lens, int32_t width, int32_t height,
                                CorrectingMode mode, LensConversion& conversion) {
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;

    LensConversion result;
    result.setup.mode = mode == CorrectingMode::kAdd ? LensMode::kAdd : LensMode::kRemove;
    result.setup.centreXPercent =
        static_cast<float>(lensconv::straightluxPercentFromCentre(lens.centre.x, width));
    result.setup.centreYPercent =
        static_cast<float>(lensconv::straightluxPercentFromCentre(lens.centre.y, height));
    if (!std::isfinite(result.setup.centreXPercent) || !std::isfinite(result.setup.centreYPercent))
        return LensDataStatus::fail(LensDataFailure::kBadCalibration,
                                    "the lens's centre is not a finite position");

    // Fit about the centre the plug-in will use (its controls are floats).
    const StraightluxModel model = modelOf(result.setup, width, height);
    const tagDPT2 centre = {model.centreX, model.centreY};
    const double R = straightluxUnitRadius(model);
    RadialTerms terms;
    if (mode == CorrectingMode::kAdd && lens.radialOnly) {
        // The same polynomial with radius 1 moved from unitRadius to R.
        const double scale = (R / lens.unitRadius) * (R / lens.unitRadius);
        terms.k1 = lens.terms.k1 * scale;
        terms.k2 = lens.terms.k2 * scale * scale;
        result.exact = true;
    } else {
        const std::vector<tagDPT2> grid = frameGrid(width, height, kConversionGridPoints);
        std::vector<tagDPT2> mapped = grid;
        // Add samples the plate through the polynomial at the corrected pixel;
        // Remove's polynomial carries a plate pixel to its corrected place.
        if (mode == CorrectingMode::kAdd) {
            lens.distort(mapped);
        } else {
            lens.undistort(mapped);
        }
        std::vector<PointPair> pairs;
        pairs.reserve(grid.size());
        for (size_t i = 0; i < grid.size(); ++i)
            if (std::isfinite(mapped[i].x) && std::isfinite(mapped[i].y))
                pairs.push_back(PointPair{grid[i], mapped[i]});
        terms = fitRadialTerms(pairs, centre, R);
    }
    result.setup.radial1 = static_cast<float>(terms.k1);
    result.setup.radial2 = static_cast<float>(terms.k2);

    status = checkSetup(result.setup);
    if (!status.ok()) {
        std::ostringstream text;
        text << "the lens does not fit the plug-in's controls at " << width << "x" << height << ": "
             << status.message;
        return LensDataStatus::fail(LensDataFailure::kNotRepresentable, text.str());
    }
    result.residual = correctionResidual(result.setup, width, height, lens);
    conversion = result;
    return LensDataStatus::success();
}
