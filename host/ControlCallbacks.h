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
// Float fields 6, 7, 8, 9, 16, 18 and the centre (13 and 14 share dlcb_13).
unsigned long* dlcb_6(int arg, SparkInfoStruct info);
unsigned long* dlcb_7(int arg, SparkInfoStruct info);
unsigned long* dlcb_8(int arg, SparkInfoStruct info);
unsigned long* dlcb_9(int arg, SparkInfoStruct info);
unsigned long* dlcb_13(int arg, SparkInfoStruct info);
unsigned long* dlcb_16(int arg, SparkInfoStruct info);
unsigned long* dlcb_18(int arg, SparkInfoStruct info);
// Menus 17, 20, 23, 24; "LineEdit" (20) also tells the plug-in its new mode.
unsigned long* dlcb_17(int arg, SparkInfoStruct info);
unsigned long* dlcb_20(int arg, SparkInfoStruct info);
unsigned long* dlcb_23(int arg, SparkInfoStruct info);
unsigned long* dlcb_24(int arg, SparkInfoStruct info);
// Buttons: "KillLines", "AutoFind" and the plug-in's "Reset".
unsigned long* dlcb_21(int arg, SparkInfoStruct info);
unsigned long* dlcb_22(int arg, SparkInfoStruct info);
unsigned long* dlcb_27(int arg, SparkInfoStruct info);
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
