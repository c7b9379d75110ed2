// PictureUtilities: the small picture modes of sparkrun, each printing what
// it made: the test chart (--make-chart), two pictures side by side
// (--side-by-side), their mean difference (--compare) and the chart's grid
// lines traced into a lines file (--trace-chart). The options have passed
// validate(), so each mode has its files.
#pragma once

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus runMakeChart(const RunOptions& options);
RunStatus runSideBySide(const RunOptions& options);
RunStatus runCompare(const RunOptions& options);
RunStatus runTraceChart(const RunOptions& options);
