// State of the host binding, one copy per loaded plug-in. Flags are 0 or 1.
// The host's buffer ids: 1 is the output frame, 2 the first input clip.
// DLwidth, DLheight, DLscalesr and DLnumProc are the binding's names, in the
// host's "DL" naming (see DLImageConversion.h), for the facts of the current
// request, which the framework reads from ZelHost.
#pragma once

#include "SparkApi.h"

extern int deep12;        // 1: the host works at 12 bits per channel; 0: 8/10-bit
extern int truncate8;     // handed to the 12-bit output conversion; nothing sets it
extern int no_buffers;    // 1: too few host image buffers, every frame is refused
extern int DL_Sync_Ctrl;  // 1: re-synchronise the controls before the next frame
extern int SourceIDInput;
extern int ResultIDOutput;
extern SparkMemBufStruct SourceBufInput;
extern SparkMemBufStruct ResultBufOutput;

extern int& DLwidth;  // frame size in pixels
extern int& DLheight;
extern int& DLscalesr;  // proxy sub-sampling factor (1 = full resolution)
extern int& DLnumProc;  // processors the host offers
