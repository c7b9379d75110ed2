// The plug-in's control callbacks. Every value written back to a control uses
// kCachedTime: the host record itself, not an animation key.
#include "PolyLineSet2DZel.h"
#include "PrintError.h"
#include "Straightlux.h"

void Straightlux::ResetCB(ControlZel&, double) {
    static constexpr LensField kButtonOrder[] = {
        LensField::kXCurvature, LensField::kYCurvature, LensField::kCentre,  LensField::kRadial1,
        LensField::kRadial2,    LensField::kMode,       LensField::kView,    LensField::kSqueeze,
        LensField::kSampling,   LensField::kMagnify,    LensField::kLineEdit};
    resetLens(kButtonOrder, ResetScope::kFieldsAndModel);
    if (lines != nullptr) {
        lines->reset();
        currentLine = nullptr;
        freeErrorPoints();
    }
}

void Straightlux::KillLinesCB(ControlZel&, double) {
    if (lines == nullptr) return;
    lines->reset();
    currentLine = nullptr;
    freeErrorPoints();
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
