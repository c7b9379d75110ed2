// Per-request facts of the host binding that framework code reads: the frame
// size in pixels, the proxy sub-sampling factor (1 = full resolution) and the
// number of processors the host offers for forked work. The host binding
// writes them at the start of every frame; all start at 0.
#pragma once

extern int DLwidth;
extern int DLheight;
extern int DLscalesr;
extern int DLnumProc;
