#include "StMap.h"

#include <cmath>
#include <cstring>
#include <new>
#include <sstream>

#include "ImageXfmZel.h"
#include "LensConventions.h"
#include "Straightlux.h"
#include "StraightluxMapRows.h"

namespace {

constexpr double kMaxOverscanPercent = 100.0;
constexpr int kChannels = 3;

}  // namespace

StMapSampler::StMapSampler(const LensSetup& setup, int32_t width, int32_t height)
    : model_(modelOf(setup, width, height)),
      inverse_(solvesInverse(setup.mode)),
      magnify_(Straightlux::magnifies(setup.magnify)),
      plan_(model_.makeInversePlan()),
      forward_(model_.makeFloatCoefficients()),
      zoom_(),
      zoomW_(1.0) {
    if (magnify_) {
        ImageXfmZel xfm;
        xfm.reset();
        Straightlux::composeMagnify(xfm, width, height, setup.magnify);
        std::memcpy(zoom_, xfm.inverse, sizeof zoom_);
        zoomW_ = xfm.inverseW;
    }
}

tagDPT2 StMapSampler::sourceOf(int32_t x, int32_t y) const {
    float entry[2];
    if (!magnify_) {
        // The passes' own per-entry arithmetic at the integer pixel.
        if (inverse_) {
            fillRemoveEntry(plan_, x, y, entry);
        } else {
            StraightluxModel::mapUndistortedToDistortedFloat(
                forward_, static_cast<float>(x), static_cast<float>(y), entry[0], entry[1]);
        }
        return tagDPT2{entry[0], entry[1]};
    }
    // The magnify pass shows the resampled frame at this point (its own
    // matrix and arithmetic); the map is then followed from there.
    const double r = 1.0 / zoomW_;
    const double mx = (zoom_[0] * x + zoom_[2] * y + zoom_[4]) * r;
    const double my = (zoom_[1] * x + zoom_[3] * y + zoom_[5]) * r;
    if (inverse_) {
        tagDPT2 source = {0.0, 0.0};
        int32_t corrections = 0;
        // A failed inverse samples pixel (0, 0), as the Remove pass stores it.
        if (StraightluxModel::solveInverse(plan_, tagDPT2{mx, my}, source, corrections) < 0)
            source = tagDPT2{0.0, 0.0};
        return tagDPT2{static_cast<float>(source.x), static_cast<float>(source.y)};
    }
    StraightluxModel::mapUndistortedToDistortedFloat(forward_, static_cast<float>(mx),
                                                     static_cast<float>(my), entry[0], entry[1]);
    return tagDPT2{entry[0], entry[1]};
}

int32_t overscanPixels(int32_t size, double percent) {
    return static_cast<int32_t>(size * percent / 100.0);
}

LensDataStatus makeStMap(const LensSetup& setup, int32_t width, int32_t height,
                         double overscanPercent, StMap& map) {
    LensDataStatus status = checkFrameSize(width, height);
    if (!status.ok()) return status;
    status = checkSetup(setup);
    if (!status.ok()) return status;
    if (!(overscanPercent >= 0.0 && overscanPercent <= kMaxOverscanPercent)) {
        std::ostringstream text;
        text << "overscan " << overscanPercent
             << " is outside 0..100 (percent of the frame on each side)";
        return LensDataStatus::fail(LensDataFailure::kBadOverscan, text.str());
    }

    StMap result;
    result.overscanX = overscanPixels(width, overscanPercent);
    result.overscanY = overscanPixels(height, overscanPercent);
    result.width = width + 2 * result.overscanX;
    result.height = height + 2 * result.overscanY;
    const size_t values = static_cast<size_t>(result.width) * result.height * kChannels;
    try {
        result.rgb.assign(values, 0.0f);
    } catch (const std::bad_alloc&) {
        std::ostringstream text;
        text << "not enough memory for a " << result.width << "x" << result.height << " ST-map";
        return LensDataStatus::fail(LensDataFailure::kOutOfMemory, text.str());
    }

    const StMapSampler sampler(setup, width, height);
    for (int32_t row = 0; row < result.height; ++row) {
        // File rows run from the top; the plug-in's rows from the bottom.
        const int32_t y =
            static_cast<int32_t>(lensconv::flipRows(row, result.height)) - result.overscanY;
        float* out = result.rgb.data() + static_cast<size_t>(row) * result.width * kChannels;
        for (int32_t column = 0; column < result.width; ++column, out += kChannels) {
            const tagDPT2 source = sampler.sourceOf(column - result.overscanX, y);
            out[0] = static_cast<float>(lensconv::stFromPixel(source.x, width));
            out[1] = static_cast<float>(lensconv::stFromPixel(source.y, height));
            out[2] = 0.0f;
        }
    }
    map = std::move(result);
    return LensDataStatus::success();
}
