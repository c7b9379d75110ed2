// sparkrun: runs a Spark plug-in on image files through the simulated host,
// and the small picture utilities of the demonstration (chart, comparison,
// side by side, chart tracing). The work is the sparkapp library's: this
// file parses, validates and dispatches to the modes. See usageText() for
// the command line and RunStatus.h for the exit codes.
#include <OutputFile.h>

#include <cstdio>
#include <ctime>
#include <new>

#include "CommandLine.h"
#include "ControlsRun.h"
#include "FrameLoop.h"
#include "ImageFiles.h"
#include "LensDataRun.h"
#include "LineDetectionRun.h"
#include "OptionRules.h"
#include "OutputNames.h"
#include "PictureUtilities.h"
#include "ProcessSignals.h"
#include "ProgramDefaults.h"
#include "ReaderProcess.h"

namespace {
RunStatus run(RunOptions& options, time_t runStart) {
    if (options.mode == RunMode::Help) {
        std::fputs(usageText(), stdout);
        return RunStatus::success();
    }
    if (!options.processors) options.processors = defaultProcessors();
    const std::string plugin =
        options.pluginPath.empty() ? defaultPluginPath() : options.pluginPath;
    const RunStatus prepared = prepareOutputs(options, runStart);
    if (!prepared.ok()) return prepared;
    switch (options.mode) {
        case RunMode::MakeChart:
            return runMakeChart(options);
        case RunMode::SideBySide:
            return runSideBySide(options);
        case RunMode::Compare:
            return runCompare(options);
        case RunMode::TraceChart:
            return runTraceChart(options);
        case RunMode::DetectLines:
            return runDetectLines(options);
        case RunMode::ListControls:
            return runControlsOnly(options, plugin);
        case RunMode::StMap:
            return runStMap(options, plugin);
        case RunMode::ExportLens:
            return runExportLens(options, plugin);
        case RunMode::Process:
            if (options.files.empty()) return runControlsOnly(options, plugin);
            return runFrames(options, plugin);
        case RunMode::Help:
            break;
    }
    return RunStatus::success();
}

RunStatus parseAndRun(int argc, char** argv, time_t runStart) {
    RunOptions options;
    RunStatus status = parseCommandLine(argc, argv, &options);
    if (status.ok()) status = validate(options);
    if (status.ok()) status = run(options, runStart);
    return status;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == kReaderProcessArgument) return serveReaderRequests();
    // Before any thread and any use of the image library: the reader as a fork.
    startReaderEarly();
    const time_t runStart = time(nullptr);
    safeio::setTemporaryTag("sparkrun");
    installProcessSignals();
    configureImageLibrary();
    RunStatus status;
    try {
        status = parseAndRun(argc, argv, runStart);
    } catch (const std::bad_alloc&) {
        status = RunStatus::failure(ExitCode::Memory,
                                    "out of memory: an allocation failed (a smaller frame, a "
                                    "proxy or more memory would help)");
    } catch (const std::exception& error) {
        status =
            RunStatus::failure(ExitCode::Internal, std::string("internal error: ") + error.what());
    } catch (...) {
        status = RunStatus::failure(ExitCode::Internal, "internal error: an unknown exception");
    }
    endReaderProcesses();
    if (status.ok()) return 0;
    std::fprintf(stderr, "sparkrun: %s\n", status.message.c_str());
    if (status.code == ExitCode::Usage) std::fputs("(sparkrun --help shows the usage)\n", stderr);
    return static_cast<int>(status.code);
}
