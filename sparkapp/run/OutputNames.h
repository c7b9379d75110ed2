// OutputNames: before any work, the files a run will write: the --save-setup
// name and a utility's output are checked (exit 4 when they cannot be
// written, OutputPaths.h) and the temporaries that dead runs left beside
// each output are removed.
#pragma once

#include <ctime>

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus prepareOutputs(const RunOptions& options, time_t runStart);
