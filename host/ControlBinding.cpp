#include "ControlBinding.h"

#include <cmath>

#include "SparkControlRecords.h"
#include "StraightluxInfo.h"

namespace {

// The host shows the centre in percent of the frame; the control holds a fraction.
constexpr double kPercent = 100.0;
static_assert(kCentreXControl.unit == ControlUnit::kPercent &&
                  kCentreYControl.unit == ControlUnit::kPercent,
              "the centre is copied as a fraction");

ZelFloatField fieldOf(SparkFloatStruct& record) {
    return ZelFloatField{&record.Value, &record.Min, &record.Max};
}

ZelListField fieldOf(SparkPupStruct& record) {
    return ZelListField{&record.Value, &record.TitleCount};
}

// The host counts menu entries from 0, the controls from 1. An index outside
// the menu (whatever a host or a set-up stored) is clamped into it.
long itemOf(const SparkPupStruct& record, const ControlDescriptor& control) {
    const long index = record.Value;
    if (index < 0) return 1;
    if (index >= control.entryCount) return control.entryCount;
    return index + 1;
}

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

// In host control order. Each bind stores the number and the record views,
// saves the field's range and leaves the control's continue-to-default flag set.
void bindControls(StraightluxInfo& c) {
    c.radial1.bind(kRadial1Control.number, fieldOf(SparkFloat6), &AuxZelFloat6);
    c.radial2.bind(kRadial2Control.number, fieldOf(SparkFloat7), &AuxZelFloat7);
    c.xCurvature.bind(kXCurvatureControl.number, fieldOf(SparkFloat8), &AuxZelFloat8);
    c.yCurvature.bind(kYCurvatureControl.number, fieldOf(SparkFloat9), &AuxZelFloat9);
    c.centre.bind(kCentreXControl.number, fieldOf(SparkFloat13), fieldOf(SparkFloat14),
                  &AuxZelPosition13);
    c.squeeze.bind(kSqueezeControl.number, fieldOf(SparkFloat16), &AuxZelFloat16);
    c.sampling.bind(kSamplingControl.number, fieldOf(SparkPup17), &AuxZelList17);
    c.magnify.bind(kMagnifyControl.number, fieldOf(SparkFloat18), &AuxZelFloat18);
    c.lineEdit.bind(kLineEditControl.number, fieldOf(SparkPup20), &AuxZelList20);
    c.killLines.bind(kKillLinesControl.number);
    c.autoFind.bind(kAutoFindControl.number);
    c.mode.bind(kModeControl.number, fieldOf(SparkPup23), &AuxZelList23);
    c.view.bind(kViewControl.number, fieldOf(SparkPup24), &AuxZelList24);
    c.reset.bind(kResetButtonControl.number);
}

float hostValue(const SparkFloatStruct& record, const ControlDescriptor& control) {
    float value = record.Value;
    if (!std::isfinite(value)) return control.defaultValue;
    float min = record.Min;
    float max = record.Max;
    // A range that is itself broken gives way to the control table's.
    if (!std::isfinite(min) || !std::isfinite(max) || min > max) {
        min = control.min;
        max = control.max;
    }
    if (value < min) value = min;
    if (value > max) value = max;
    return value;
}

void bindOverlayWidgets(StraightluxInfo& c, OverlayZel& surface) {
    constexpr int kFull = 65535;
    c.crosshair.bind(kCentreXControl.number, fieldOf(SparkFloat13), fieldOf(SparkFloat14));
    c.crosshair.SetColour(kFull, kFull, 0, kFull);
    c.crosshair.diagonals = 0;
    c.crosshair.surface = &surface;
    c.linePen.SetColour(kFull, kFull, kFull, kFull);
    c.linePen.surface = &surface;
}

void copyHostValuesToControls(StraightluxInfo& c) {
    c.radial1.setCached(hostValue(SparkFloat6, kRadial1Control));
    c.radial2.setCached(hostValue(SparkFloat7, kRadial2Control));
    c.xCurvature.setCached(hostValue(SparkFloat8, kXCurvatureControl));
    c.yCurvature.setCached(hostValue(SparkFloat9, kYCurvatureControl));
    c.centre.setCached(hostValue(SparkFloat13, kCentreXControl) / kPercent,
                       hostValue(SparkFloat14, kCentreYControl) / kPercent);
    c.squeeze.setCached(hostValue(SparkFloat16, kSqueezeControl));
    c.magnify.setCached(hostValue(SparkFloat18, kMagnifyControl));
    c.sampling.setCached(itemOf(SparkPup17, kSamplingControl));
    c.lineEdit.setCached(itemOf(SparkPup20, kLineEditControl));
    c.mode.setCached(itemOf(SparkPup23, kModeControl));
    c.view.setCached(itemOf(SparkPup24, kViewControl));
}
