#include "HostBindingGlobals.h"

#include "ZelHost.h"

int deep12 = 0;
int truncate8 = 0;
int no_buffers = 0;
int DL_Sync_Ctrl = 1;
int SourceIDInput = 2;
int ResultIDOutput = 1;
SparkMemBufStruct SourceBufInput = {};
SparkMemBufStruct ResultBufOutput = {};

int& DLwidth = zelHost().frame.width;
int& DLheight = zelHost().frame.height;
int& DLscalesr = zelHost().frame.proxyFactor;
int& DLnumProc = zelHost().frame.processors;
