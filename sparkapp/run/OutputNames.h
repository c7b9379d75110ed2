// OutputNames: before any work, the files a run will write: the --save-setup
// folder is checked (exit 4 when it cannot take the file) and the
// temporaries that dead runs left beside each output are removed.
#pragma once

#include <ctime>

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus prepareOutputs(const RunOptions& options, time_t runStart);
