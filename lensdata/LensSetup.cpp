#include "LensSetup.h"

#include <cmath>
#include <sstream>

#include "StraightluxControlTable.h"

namespace {

constexpr int32_t kMaxFrameSide = 32768;

// The binding copies the centre's percent field into the control as a fraction.
double fractionOf(float percent) {
    static_assert(kCentreXControl.unit == ControlUnit::kPercent, "the centre is in percent");
    return static_cast<double>(percent) / 100.0;
}

LensDataStatus checkValue(float value, const ControlDescriptor& control) {
    std::ostringstream text;
    if (!std::isfinite(value)) {
        text << control.channelName << " is not a finite number";
        return LensDataStatus::fail(LensDataFailure::kBadValue, text.str());
    }
    if (value < control.min || value > control.max) {
        text << control.channelName << " " << value << " is outside its range " << control.min
             << ".." << control.max;
        return LensDataStatus::fail(LensDataFailure::kBadValue, text.str());
    }
    return LensDataStatus::success();
}

}  // namespace

const char* modeName(LensMode mode) {
    switch (mode) {
        case LensMode::kAdd:
            return "Add";
        case LensMode::kAutoRemove:
            return "Auto Remove";
        case LensMode::kRemove:
            break;
    }
    return "Remove";
}

LensDataStatus checkSetup(const LensSetup& setup) {
    const struct {
        float value;
        const ControlDescriptor& control;
    } values[] = {{setup.radial1, kRadial1Control},        {setup.radial2, kRadial2Control},
                  {setup.xCurvature, kXCurvatureControl},  {setup.yCurvature, kYCurvatureControl},
                  {setup.centreXPercent, kCentreXControl}, {setup.centreYPercent, kCentreYControl},
                  {setup.squeeze, kSqueezeControl},        {setup.magnify, kMagnifyControl}};
    for (const auto& v : values) {
        LensDataStatus status = checkValue(v.value, v.control);
        if (!status.ok()) return status;
    }
    return LensDataStatus::success();
}

LensDataStatus checkFrameSize(int32_t width, int32_t height) {
    if (width >= 1 && height >= 1 && width <= kMaxFrameSide && height <= kMaxFrameSide)
        return LensDataStatus::success();
    std::ostringstream text;
    text << "frame size " << width << "x" << height << " is outside 1.." << kMaxFrameSide
         << " per side";
    return LensDataStatus::fail(LensDataFailure::kBadValue, text.str());
}

StraightluxModel modelOf(const LensSetup& setup, int32_t width, int32_t height) {
    StraightluxModel model;
    model.width = width;
    model.height = height;
    model.normScale = 1.0f;
    model.loadControls(fractionOf(setup.centreXPercent), fractionOf(setup.centreYPercent),
                       setup.squeeze, setup.radial1, setup.radial2, setup.xCurvature,
                       setup.yCurvature);
    return model;
}
