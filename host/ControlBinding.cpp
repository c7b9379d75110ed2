#include "ControlBinding.h"

#include <cmath>

#include "SparkControlRecords.h"
#include "StraightluxInfo.h"

namespace {

// The host shows a position in percent of the frame; the control holds a fraction.
constexpr double kPercent = 100.0;

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

#define STRAIGHTLUX_FLOAT(Name, N, member) ZelAuxFloatRange AuxZelFloat##N;
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) ZelAuxPositionRange AuxZelPosition##NX;
#define STRAIGHTLUX_MENU(Name, N, member) ZelAuxList AuxZelList##N;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"

// In the control list's order, which is the host's. Each bind stores the
// number and the record views, saves the field's range and leaves the
// control's continue-to-default flag set.
void bindControls(StraightluxInfo& c) {
#define STRAIGHTLUX_FLOAT(Name, N, member) \
    c.member.bind(k##Name##Control.number, fieldOf(SparkFloat##N), &AuxZelFloat##N);
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)                                            \
    c.member.bind(k##Name##XControl.number, fieldOf(SparkFloat##NX), fieldOf(SparkFloat##NY), \
                  &AuxZelPosition##NX);
#define STRAIGHTLUX_MENU(Name, N, member) \
    c.member.bind(k##Name##Control.number, fieldOf(SparkPup##N), &AuxZelList##N);
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback) c.member.bind(k##Name##Control.number);
#include "StraightluxControls.def"
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

// A float field is copied as it is, a position as fractions.
void copyHostValuesToControls(StraightluxInfo& c) {
#define STRAIGHTLUX_FLOAT(Name, N, member)                                          \
    static_assert(k##Name##Control.unit == ControlUnit::kPlain, #Name " is plain"); \
    c.member.setCached(hostValue(SparkFloat##N, k##Name##Control));
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)                              \
    static_assert(k##Name##XControl.unit == ControlUnit::kPercent &&            \
                      k##Name##YControl.unit == ControlUnit::kPercent,          \
                  #Name " is in percent");                                      \
    c.member.setCached(hostValue(SparkFloat##NX, k##Name##XControl) / kPercent, \
                       hostValue(SparkFloat##NY, k##Name##YControl) / kPercent);
#define STRAIGHTLUX_MENU(Name, N, member) c.member.setCached(itemOf(SparkPup##N, k##Name##Control));
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
}
