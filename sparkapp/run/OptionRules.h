// OptionRules: every rule on which options go together, checked in one step
// before any work, each with its own message (a usage failure, exit 2).
//
// A rule here looks at the options alone (and at file names as names): the
// mode and its files, set-up names, the frame range, the sequence names, the
// float encoding, and names that would overwrite one another. What depends
// on the disk, the pictures or the plug-in (a file that is missing, a frame's
// size, a control's name) is checked where it becomes known.
#pragma once

#include <string>

#include "RunOptions.h"
#include "RunStatus.h"

RunStatus validate(const RunOptions& options);

// Several frames written need a numbered output name; the frame count may
// come from the disk, so the frame planning asks this too.
RunStatus checkSequenceOutput(size_t frameCount, const std::string& outputName);
