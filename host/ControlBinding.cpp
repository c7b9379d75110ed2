#include "ControlBinding.h"

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

// The host counts menu entries from 0, the controls from 1.
long itemOf(const SparkPupStruct& record) { return record.Value + 1L; }

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

void copyHostValuesToControls(StraightluxInfo& c) {
    c.radial1.setCached(SparkFloat6.Value);
    c.radial2.setCached(SparkFloat7.Value);
    c.xCurvature.setCached(SparkFloat8.Value);
    c.yCurvature.setCached(SparkFloat9.Value);
    c.centre.setCached(SparkFloat13.Value / kPercent, SparkFloat14.Value / kPercent);
    c.squeeze.setCached(SparkFloat16.Value);
    c.magnify.setCached(SparkFloat18.Value);
    c.sampling.setCached(itemOf(SparkPup17));
    c.lineEdit.setCached(itemOf(SparkPup20));
    c.mode.setCached(itemOf(SparkPup23));
    c.view.setCached(itemOf(SparkPup24));
}
