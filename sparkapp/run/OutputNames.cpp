// The outputs of a run, prepared.
#include "OutputNames.h"

#include "OutputPaths.h"

namespace {
// The file a mode writes, or empty.
std::string outputOf(const RunOptions& options) {
    switch (options.mode) {
        case RunMode::Process:
            return options.files.size() == 2 ? options.files[1] : "";
        case RunMode::MakeChart:
            return options.files.size() == 1 ? options.files[0] : "";
        case RunMode::SideBySide:
            return options.files.size() == 3 ? options.files[2] : "";
        case RunMode::TraceChart:
            return options.files.size() == 2 ? options.files[1] : "";
        case RunMode::StMap:
            return options.stMapPath;
        default:
            return "";
    }
}
}  // namespace

RunStatus prepareOutputs(const RunOptions& options, time_t runStart) {
    // A set-up that cannot be saved is found out before any frame is made.
    if (!options.saveSetupPath.empty()) {
        const RunStatus status = checkOutputFolder(options.saveSetupPath);
        if (!status.ok()) return status;
        sweepStaleTemporaries(options.saveSetupPath, runStart, options.verbose);
    }
    const std::string output = outputOf(options);
    if (!output.empty()) sweepStaleTemporaries(output, runStart, options.verbose);
    for (const std::string* other : {&options.overlayPath, &options.toOpenCv, &options.toLensfun})
        if (!other->empty()) sweepStaleTemporaries(*other, runStart, options.verbose);
    return RunStatus::success();
}
