// The plug-in's control callbacks. Every value written back to a control uses
// the time -1.0: the host record itself, not an animation key.
#include "PolyLineSet2DZel.h"
#include "PrintError.h"
#include "Straightlux.h"

namespace {

constexpr double kCachedTime = -1.0;
constexpr double kFrameMiddle = 0.5;  // the centre control's fractions of the frame

}  // namespace

void Straightlux::ResetCB(ControlZel&, double) {
    xCurvature = 0.0f;
    yCurvature = 0.0f;
    centreX = static_cast<float>(kFrameMiddle * width);
    centreY = static_cast<float>(kFrameMiddle * height);
    info.xCurvature.SetValue(kCachedTime, 0.0);
    info.yCurvature.SetValue(kCachedTime, 0.0);
    info.centre.SetValue(kCachedTime, kFrameMiddle, kFrameMiddle);
    radial1 = 0.0f;
    radial2 = 0.0f;
    info.radial1.SetValue(kCachedTime, 0.0);
    info.radial2.SetValue(kCachedTime, 0.0);
    mode = kModeRemove;
    info.mode.SetValue(kCachedTime, kModeRemove);
    info.view.SetValue(kCachedTime, kViewResult);
    squeeze = 1.0f;
    info.squeeze.SetValue(kCachedTime, 1.0);
    sampling = kSamplingSharpCubic;
    info.sampling.SetValue(kCachedTime, kSamplingSharpCubic);
    magnify = 1.0f;
    info.magnify.SetValue(kCachedTime, 1.0);
    lastLineEdit = kLineEditNoAction;
    info.lineEdit.SetValue(kCachedTime, kLineEditNoAction);
    if (lines != nullptr) {
        lines->reset();
        currentLine = nullptr;
        FreeErrorPoints();
    }
}

void Straightlux::KillLinesCB(ControlZel&, double) {
    if (lines == nullptr) return;
    lines->reset();
    currentLine = nullptr;
    FreeErrorPoints();
    lastLineEdit = kLineEditNoAction;
    info.lineEdit.SetValue(kCachedTime, kLineEditNoAction);
}

void Straightlux::LineEditCB(ControlZel&, double) {
    long value = info.lineEdit.value;
    info.lineEdit.GetValue(kCachedTime, value);
    // Coming to "Add Line" from another mode starts a fresh polyline.
    if (value == kLineEditAddLine && value != lastLineEdit) newLine = true;
    if (value == kLineEditNoAction) currentLine = nullptr;
    lastLineEdit = static_cast<int32_t>(value);
}

void Straightlux::AutoCB(ControlZel&, double) {
    if (lines == nullptr || lines->head == nullptr) {
        PrintError("Need drawn lines to auto remove.");
        return;
    }
    const int32_t previousMode = mode;
    mode = kModeAutoRemove;
    info.mode.SetValue(kCachedTime, kModeAutoRemove);
    info.view.SetValue(kCachedTime, kViewResult);
    if (!OptimizeK1K2()) {
        mode = previousMode;
        info.mode.SetValue(kCachedTime, previousMode);
        PrintError("Optimization failed.");
    }
}
