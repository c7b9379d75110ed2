// The callbacks of the exported control records. The host calls one when the
// user changes a field: the argument is 0 while dragging, 1 at the end of a
// change, 2 for none, 3 at the end of a drag. A callback returns the output
// buffer of a fresh render, or null when the host should keep what it shows.
// Value callbacks first bring the bound control object up to date with its
// record, then hand over to DefaultCB, which re-renders only at the end of a
// change with "Auto Preview" on and otherwise just redraws the viewer.
#pragma once

#include "SparkApi.h"

extern "C" {
// dlcb_<number> of each lens field and button of the control list
// (StraightluxControls.def): dlcb_6 ... dlcb_27; the centre's two fields
// share dlcb_13. "LineEdit" (20) also tells the plug-in its new mode.
#define STRAIGHTLUX_FLOAT(Name, N, member) unsigned long* dlcb_##N(int arg, SparkInfoStruct info);
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) \
    unsigned long* dlcb_##NX(int arg, SparkInfoStruct info);
#define STRAIGHTLUX_MENU(Name, N, member) unsigned long* dlcb_##N(int arg, SparkInfoStruct info);
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback) \
    unsigned long* dlcb_##N(int arg, SparkInfoStruct info);
#include "StraightluxControls.def"
// Common fields: blend, proxy selector, "Auto Preview", "Clear Overlay".
unsigned long* Blend1CB(int arg, SparkInfoStruct info);
unsigned long* SetRes1CB(int arg, SparkInfoStruct info);
unsigned long* Auto1CB(int arg, SparkInfoStruct info);
unsigned long* Overlay1CB(int arg, SparkInfoStruct info);
unsigned long* OverlayCB(int arg, SparkInfoStruct info);
// The confirmed reset of every lens field to its default.
unsigned long* Reset1CB(int arg, SparkInfoStruct info);
// Re-render with "Auto Preview" on at the end of a change, else redraw.
unsigned long* DefaultCB(int arg, SparkInfoStruct info);
}
