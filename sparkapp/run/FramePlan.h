// FramePlan: the frames a run renders and what is checked on the disk before
// any of them is read: the input files are there, the output names can be
// written (folder, format, name length), the overlay can be drawn, and the
// lines file reads (or, with --lines auto, the lines are found in the input).
//
// The frames are --frames A-B, else the numbers of the files a sequence
// pattern finds, else frame 1 (a still, which stands for every frame). The
// options have passed validate() (OptionRules.h).
#pragma once

#include <vector>

#include "FramePattern.h"
#include "LinesFile.h"
#include "RunOptions.h"
#include "RunStatus.h"

struct FramePlan {
    FramePattern input;
    FramePattern output;
    std::vector<unsigned> frames;  // ascending, at least one
    LinesFile lines;               // --lines, read
};

RunStatus planFrames(const RunOptions& options, FramePlan* plan);
