// FrameLoop: renders a run's frames through the plug-in, as the host would
// for a render: the first frame is read (and weighed against the memory
// before it is decoded), the session starts at its size and depth with the
// set-up, --set and --key applied, the viewer's work (--lines, --autofind,
// --overlay) is done on it, then every frame is read, processed and written
// in order, and the set-up is saved at the end (--save-setup).
//
// The frames go through a pipeline: while the plug-in's SparkProcess works
// on frame N (on this thread, in frame order, as the host calls it), the
// next frames are decoded and put into host frames (FrameInputs.h) and the
// frames before are converted, encoded and written (FrameOutputs.h). A fixed
// number of frames is in flight, so memory stays flat over any length, and
// the files are byte for byte those of the plain loop that reads, processes
// and writes one frame after another (--sequential keeps that loop).
//
// A still input is read once and stands for every frame; the frames of a
// sequence must all have the first one's size and kind (floating-point or
// whole numbers). Each output file is written whole or not at all
// (ImageFiles.h); a failure stops the run at that frame: the frames before
// it are written, it and those after it are not, and the message names it.
#pragma once

#include <functional>
#include <string>

#include "FrameOutputs.h"
#include "RunOptions.h"
#include "RunStatus.h"

// What a caller (a viewer) may follow of a run and ask of it.
struct FrameLoopWatch {
    // After each frame is written, in frame order (from a writer thread,
    // except with --sequential); it must not throw.
    std::function<void(const FrameWritten&)> written;
    // Asked before each frame is processed; true stops the run there: the
    // frames already processed are written, and runFrames returns success
    // with stopped set.
    std::function<bool()> stopAsked;
    bool stopped = false;
};

RunStatus runFrames(const RunOptions& options, const std::string& pluginPath,
                    FrameLoopWatch* watch = nullptr);
