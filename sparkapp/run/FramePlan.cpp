// Planning a run's frames.
#include "FramePlan.h"

#include <Viewer.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "ImageFiles.h"
#include "LineDetectionRun.h"
#include "OptionRules.h"
#include "OutputPaths.h"

namespace {
RunStatus inputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Input, text);
}

RunStatus findFrames(const RunOptions& options, FramePlan* plan) {
    std::string error;
    if (!FramePattern::parse(options.files[0], &plan->input, &error) ||
        !FramePattern::parse(options.files[1], &plan->output, &error))
        return RunStatus::failure(ExitCode::Usage, error);
    if (!options.frames.empty()) {
        if (!parseFrameRange(options.frames, &plan->frames, &error))
            return RunStatus::failure(ExitCode::Usage, error);
    } else if (plan->input.isSequence()) {
        plan->frames = plan->input.existingFrames();
        if (plan->frames.empty()) return inputFailure("no input files match " + plan->input.text());
    } else {
        plan->frames = {1};
    }
    RunStatus status = checkSequenceOutput(plan->frames.size(), options.files[1]);
    if (!status.ok()) return status;
    for (unsigned frame : plan->frames) {
        const std::string name = plan->input.fileFor(frame);
        struct stat found;
        if (stat(name.c_str(), &found) != 0) return inputFailure("input file not found: " + name);
        if (!plan->input.isSequence()) break;
    }
    return RunStatus::success();
}

// The output names can be made; a sequence's longest name is its last frame's.
RunStatus checkOutputs(const RunOptions& options, const FramePlan& plan) {
    RunStatus status = checkOutputPath(plan.output.fileFor(plan.frames.front()));
    if (status.ok() && plan.output.isSequence())
        status = checkOutputFolder(plan.output.fileFor(plan.frames.back()));
    // The frames between, where they exist already.
    if (status.ok() && plan.output.isSequence())
        for (unsigned frame : plan.output.existingFrames())
            if (status.ok() && std::binary_search(plan.frames.begin(), plan.frames.end(), frame))
                status = checkOutputKind(plan.output.fileFor(frame));
    if (!status.ok() || options.overlayPath.empty()) return status;
    status = checkOutputPath(options.overlayPath);
    if (!status.ok()) return status;
    std::string why;
    if (!simhost::Viewer::available(&why))
        return RunStatus::failure(ExitCode::Output,
                                  "--overlay needs OpenGL off-screen drawing: " + why);
    return RunStatus::success();
}

// A lines file that cannot be opened is an input failure, one that is not a
// lines file a usage failure naming the fault's position.
RunStatus readLines(const std::string& path, LinesFile* lines) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return inputFailure("cannot open the lines file " + path + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode)) return inputFailure("the lines file " + path + " is a folder");
    // A pipe or a device would be waited on, or read without end.
    if (!S_ISREG(status.st_mode))
        return inputFailure("cannot read the lines file " + path + ": not a regular file");
    if (access(path.c_str(), R_OK) != 0)
        return inputFailure("cannot open the lines file " + path + ": " + std::strerror(errno));
    std::string error;
    if (!readLinesFile(path, *lines, error))
        return RunStatus::failure(ExitCode::Usage,
                                  "not a lines file: " + error +
                                      " (the form is {\"lines\": [[[x, y], [x, y], ...], ...]})");
    const std::string coincide = coincidentPoints(*lines);
    if (!coincide.empty())
        std::fprintf(stderr, "%s: warning: %s: %s\n", program_invocation_short_name, path.c_str(),
                     coincide.c_str());
    return RunStatus::success();
}
}  // namespace

RunStatus planFrames(const RunOptions& options, FramePlan* plan) {
    RunStatus status = findFrames(options, plan);
    if (status.ok()) status = checkOutputs(options, *plan);
    if (status.ok() && options.linesPath == kAutoLines)
        status = detectInputLines(options, plan->input, plan->frames, &plan->lines);
    else if (status.ok() && !options.linesPath.empty())
        status = readLines(options.linesPath, &plan->lines);
    return status;
}
