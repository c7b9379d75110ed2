#include "HostBindingGlobals.h"

int deep12 = 0;
int truncate8 = 0;
int no_buffers = 0;
int DL_Sync_Ctrl = 1;
int SourceIDInput = 2;
int ResultIDOutput = 1;
SparkMemBufStruct SourceBufInput = {};
SparkMemBufStruct ResultBufOutput = {};
