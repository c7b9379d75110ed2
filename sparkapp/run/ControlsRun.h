// ControlsRun: a session without images: list the controls (--list-controls)
// or only save them (--save-setup with no INPUT and OUTPUT). The plug-in is
// started at a nominal 1920x1080 frame.
#pragma once

#include <string>

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus runControlsOnly(const RunOptions& options, const std::string& pluginPath);
