// Listing and saving controls without a frame.
#include "ControlsRun.h"

#include <cstdio>

#include "ControlAssignments.h"
#include "HostPixels.h"
#include "LensDataRun.h"
#include "SparkSession.h"

namespace {
const int kNominalWidth = 1920;  // frame size a session without images starts with
const int kNominalHeight = 1080;
}  // namespace

RunStatus runControlsOnly(const RunOptions& options, const std::string& pluginPath) {
    SparkSession session(options.quiet, options.processors);
    RunStatus status = session.load(pluginPath);
    if (!status.ok()) return status;
    const int depth = options.depth ? options.depth : kHostDepth8;
    status = session.start(kNominalWidth, kNominalHeight, depth, 1.0f, options.setupPath);
    // A lens from another program at --size, or an OpenCV calibration's own size.
    if (status.ok())
        status = applyLensSource(options, session, options.sizeWidth, options.sizeHeight);
    if (status.ok()) status = applyControlValues(options.sets, options.keys, session.controls());
    if (status.ok() && options.mode == RunMode::ListControls)
        std::fputs(session.controls().listing().c_str(), stdout);
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}
