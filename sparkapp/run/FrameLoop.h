// FrameLoop: renders a run's frames through the plug-in, as the host would
// for a render: the first frame is read (and weighed against the memory
// before it is decoded), the session starts at its size and depth with the
// set-up, --set and --key applied, the viewer's work (--lines, --autofind,
// --overlay) is done on it, then every frame is read, processed and written
// in order, and the set-up is saved at the end (--save-setup).
//
// A still input is read once and stands for every frame; the frames of a
// sequence must all have the first one's size. Each output file is written
// whole or not at all (ImageFiles.h); a failure stops the run at that frame.
#pragma once

#include <string>

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus runFrames(const RunOptions& options, const std::string& pluginPath);
