#include "ControlBinding.h"

#include "PluginInstance.h"
#include "SparkControlRecords.h"

namespace {

// The host shows the centre in percent of the frame; the control holds a fraction.
constexpr double kPercent = 100.0;

}  // namespace

ZelAuxFloatRange AuxZelFloat6;
ZelAuxFloatRange AuxZelFloat7;
ZelAuxFloatRange AuxZelFloat8;
ZelAuxFloatRange AuxZelFloat9;
ZelAuxPositionRange AuxZelPosition13;
ZelAuxFloatRange AuxZelFloat16;
ZelAuxList AuxZelList17;
ZelAuxFloatRange AuxZelFloat18;
ZelAuxList AuxZelList20;
ZelAuxList AuxZelList23;
ZelAuxList AuxZelList24;

// In host control order. Each Bind stores number and records, saves the
// field's range and leaves the control's continue-to-default flag set.
void BindControls() {
    StraightluxInfo& controls = Instance.info;
    controls.radial1.Bind(kRadial1Control, &SparkFloat6, &AuxZelFloat6);
    controls.radial2.Bind(kRadial2Control, &SparkFloat7, &AuxZelFloat7);
    controls.xCurvature.Bind(kXCurvatureControl, &SparkFloat8, &AuxZelFloat8);
    controls.yCurvature.Bind(kYCurvatureControl, &SparkFloat9, &AuxZelFloat9);
    controls.centre.Bind(kCentreXControl, &SparkFloat13, &SparkFloat14, &AuxZelPosition13);
    controls.squeeze.Bind(kSqueezeControl, &SparkFloat16, &AuxZelFloat16);
    controls.sampling.Bind(kSamplingControl, &SparkPup17, &AuxZelList17);
    controls.magnify.Bind(kMagnifyControl, &SparkFloat18, &AuxZelFloat18);
    controls.lineEdit.Bind(kLineEditControl, &SparkPup20, &AuxZelList20);
    controls.killLines.Bind(kKillLinesControl, &SparkPush21);
    controls.autoFind.Bind(kAutoFindControl, &SparkPush22);
    controls.mode.Bind(kModeControl, &SparkPup23, &AuxZelList23);
    controls.view.Bind(kViewControl, &SparkPup24, &AuxZelList24);
    controls.reset.Bind(kResetButtonControl, &SparkPush27);
}

void CopyHostValuesToControls() {
    StraightluxInfo& controls = Instance.info;
    controls.radial1.SetCached(SparkFloat6.Value);
    controls.radial2.SetCached(SparkFloat7.Value);
    controls.xCurvature.SetCached(SparkFloat8.Value);
    controls.yCurvature.SetCached(SparkFloat9.Value);
    controls.centre.SetCached(SparkFloat13.Value / kPercent, SparkFloat14.Value / kPercent);
    controls.squeeze.SetCached(SparkFloat16.Value);
    controls.magnify.SetCached(SparkFloat18.Value);
    // The host counts menu entries from 0, the controls from 1.
    controls.sampling.SetCached(SparkPup17.Value + 1);
    controls.lineEdit.SetCached(SparkPup20.Value + 1);
    controls.mode.SetCached(SparkPup23.Value + 1);
    controls.view.SetCached(SparkPup24.Value + 1);
}
