// The link between the plug-in's control objects and the host's control
// records. bindControls runs once at start-up; copyHostValuesToControls runs
// before every frame and every overlay drawing and puts the host values into
// the controls' cached values in plug-in units (fractions for positions,
// 1-based list items), whatever the records hold: a value that is not a
// finite number counts as the control's default, a value is clamped to its
// record's range (the control table's when the record's own is broken), a
// menu index into the menu. The auxiliary records keep each bound field's range
// while it is greyed out; they stay inside the plug-in.
#pragma once

#include "ControlAuxRecords.h"
#include "SparkApi.h"

struct StraightluxInfo;

// AuxZelFloat<number>, AuxZelPosition<number> and AuxZelList<number>: one
// per value field of the control list (StraightluxControls.def).
#define STRAIGHTLUX_FLOAT(Name, N, member) extern ZelAuxFloatRange AuxZelFloat##N;
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) extern ZelAuxPositionRange AuxZelPosition##NX;
#define STRAIGHTLUX_MENU(Name, N, member) extern ZelAuxList AuxZelList##N;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"

// Binds every control of the lens plug-in's info to its exported record.
void bindControls(StraightluxInfo& controls);
// Binds the viewer widgets: the centre crosshair to the centre's records 13
// and 14 (yellow, no diagonals), the line pen (white); both draw on surface.
class OverlayZel;
void bindOverlayWidgets(StraightluxInfo& controls, OverlayZel& surface);
void copyHostValuesToControls(StraightluxInfo& controls);

struct ControlDescriptor;
// A float record's value as the plug-in may use it (see above).
float hostValue(const SparkFloatStruct& record, const ControlDescriptor& control);
