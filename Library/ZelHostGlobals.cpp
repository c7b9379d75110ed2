#include "ZelHostGlobals.h"

int DLwidth = 0;
int DLheight = 0;
int DLscalesr = 0;
int DLnumProc = 0;
