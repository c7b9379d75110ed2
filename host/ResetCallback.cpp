// "Reset" on the common page (control 32): after the user confirms, every
// lens field goes back to its default, each shown and synced in page order.
#include "ControlCallbacks.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"
#include "SparkText.h"

namespace {

constexpr const char* kResetQuestion =
    "Are you sure you want to reset the current settings to default values?";

void resetFloat(SparkFloatStruct& record, int number, float value) {
    record.Value = value;
    sparkControlUpdate(number);
}

void resetMenu(SparkPupStruct& record, int number, int index) {
    record.Value = index;
    sparkControlUpdate(number);
}

}  // namespace

// The blend, the proxy selector and the two check boxes keep their values,
// deliberately: they are viewing choices, not lens settings.
unsigned long* Reset1CB(int arg, SparkInfoStruct info) {
    if (!sparkMessageConfirm(sparkText(kResetQuestion))) return DefaultCB(arg, info);

    StraightluxInfo& controls = Instance.info;
    resetFloat(SparkFloat6, kRadial1Control, kRadialDefault);
    controls.radial1.Sync();
    resetFloat(SparkFloat7, kRadial2Control, kRadialDefault);
    controls.radial2.Sync();
    resetFloat(SparkFloat8, kXCurvatureControl, kCurvatureDefault);
    controls.xCurvature.Sync();
    resetFloat(SparkFloat9, kYCurvatureControl, kCurvatureDefault);
    controls.yCurvature.Sync();
    resetFloat(SparkFloat13, kCentreXControl, kCentreDefault);
    resetFloat(SparkFloat14, kCentreYControl, kCentreDefault);
    controls.centre.Sync();
    resetFloat(SparkFloat16, kSqueezeControl, kSqueezeDefault);
    controls.squeeze.Sync();
    resetMenu(SparkPup17, kSamplingControl, kSamplingDefault);
    controls.sampling.Sync();
    resetFloat(SparkFloat18, kMagnifyControl, kMagnifyDefault);
    controls.magnify.Sync();
    resetMenu(SparkPup20, kLineEditControl, kLineEditDefault);
    controls.lineEdit.Sync();
    controls.killLines.Sync();
    controls.autoFind.Sync();
    resetMenu(SparkPup23, kModeControl, kModeDefault);
    controls.mode.Sync();
    resetMenu(SparkPup24, kViewControl, kViewDefault);
    controls.view.Sync();
    controls.reset.Sync();
    Instance.SyncControls();
    return DefaultCB(arg, info);
}
