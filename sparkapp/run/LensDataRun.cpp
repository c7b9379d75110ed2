// Lens data in and out: the lensdata library driven by a session's controls.
#include "LensDataRun.h"

#include <LensfunProfile.h>
#include <OpenCvCalibration.h>
#include <OutputFile.h>
#include <SimHost.h>
#include <StMap.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ControlAssignments.h"
#include "FramePattern.h"
#include "ImageFiles.h"
#include "OutputPaths.h"

namespace {
const char* const kGeometry[] = {"Radial1",  "Radial2",  "XCurvature", "YCurvature",
                                 "Centre X", "Centre Y", "Squeeze",    "Magnify"};
const char kMode[] = "Mode";
const double kFullFrameWidthMm = 36.0;  // the 35 mm film frame a crop factor refers to
const char kExportedLensName[] = "Straightlux lens";
// The date a map made from --size alone carries: OpenEXR writers stamp the
// time of writing otherwise, and the same set-up must give the same file.
const char kNoDate[] = "1970:01:01 00:00:00";

RunStatus statusOf(const LensDataStatus& status) {
    switch (status.failure) {
        case LensDataFailure::kNone:
            return RunStatus::success();
        case LensDataFailure::kBadValue:
        case LensDataFailure::kBadOverscan:
            return RunStatus::failure(ExitCode::Usage, status.message);
        case LensDataFailure::kOutOfMemory:
            return RunStatus::failure(ExitCode::Memory, status.message);
        default:
            return RunStatus::failure(ExitCode::Input, status.message);
    }
}

RunStatus lacks(const std::string& control, const std::string& option) {
    return RunStatus::failure(ExitCode::Plugin, "the plug-in has no \"" + control + "\" control: " +
                                                    option + " needs the lens plug-in's controls");
}

// The set-up as the plug-in's controls hold it now.
RunStatus lensSetupOf(const ControlNames& controls, const std::string& option, LensSetup* setup) {
    float* targets[] = {&setup->radial1,    &setup->radial2,        &setup->xCurvature,
                        &setup->yCurvature, &setup->centreXPercent, &setup->centreYPercent,
                        &setup->squeeze,    &setup->magnify};
    for (size_t i = 0; i < sizeof targets / sizeof targets[0]; ++i) {
        const Control* control = controls.named(kGeometry[i], ControlKind::Float);
        if (!control) return lacks(kGeometry[i], option);
        *targets[i] = static_cast<SparkFloatStruct*>(control->record)->Value;
    }
    const Control* mode = controls.named(kMode, ControlKind::Menu);
    if (!mode) return lacks(kMode, option);
    const std::string entry = controls.valueText(*mode);
    for (LensMode candidate : {LensMode::kRemove, LensMode::kAdd, LensMode::kAutoRemove})
        if (entry == modeName(candidate)) {
            setup->mode = candidate;
            return RunStatus::success();
        }
    return lacks(std::string(kMode) + ": Remove, Add, Auto Remove", option);
}

// "Name=value" for each control of a converted set-up.
std::vector<std::string> assignmentsOf(const LensSetup& setup) {
    const float values[] = {setup.radial1,    setup.radial2,        setup.xCurvature,
                            setup.yCurvature, setup.centreXPercent, setup.centreYPercent,
                            setup.squeeze,    setup.magnify};
    std::vector<std::string> sets = {std::string(kMode) + "=" + modeName(setup.mode)};
    for (size_t i = 0; i < sizeof values / sizeof values[0]; ++i) {
        char text[96];
        std::snprintf(text, sizeof text, "%s=%.9g", kGeometry[i], static_cast<double>(values[i]));
        sets.push_back(text);
    }
    return sets;
}

LensDataStatus convertSource(const RunOptions& options, int width, int height,
                             LensConversion* conversion) {
    const CorrectingMode mode =
        options.correctIn == CorrectIn::Add ? CorrectingMode::kAdd : CorrectingMode::kRemove;
    if (!options.fromOpenCv.empty()) {
        OpenCvCalibration calibration;
        LensDataStatus status = readOpenCvCalibration(options.fromOpenCv, calibration);
        if (!status.ok()) return status;
        return convertFromOpenCv(calibration, width, height, mode, *conversion);
    }
    LensfunDatabase database;
    LensDataStatus status = database.loadInstalled();
    if (!status.ok()) return status;
    LensfunProfile profile;
    const std::vector<std::string>& at = options.fromLensfun;
    status = findLensfunProfile(database, at[0], at[1], at[2], std::strtod(at[3].c_str(), nullptr),
                                profile);
    if (!status.ok()) return status;
    return convertFromLensfun(profile, width, height, mode, *conversion);
}

// The frame size of a mode without pictures: --size, or the first INPUT's
// (whose date the outputs then carry).
RunStatus frameSizeOf(const RunOptions& options, int* width, int* height,
                      std::string* dateTime = nullptr) {
    if (dateTime) *dateTime = kNoDate;
    if (options.sizeWidth > 0) {
        *width = options.sizeWidth;
        *height = options.sizeHeight;
        return RunStatus::success();
    }
    FramePattern input;
    std::string error;
    if (!FramePattern::parse(options.files[0], &input, &error))
        return RunStatus::failure(ExitCode::Usage, error);
    unsigned first = 1;
    if (input.isSequence()) {
        const std::vector<unsigned> found = input.existingFrames();
        if (found.empty())
            return RunStatus::failure(ExitCode::Input, "no input files match " + input.text());
        first = found.front();
    }
    FilePixels picture;
    int depth = 0;
    RunStatus status = readImage(input.fileFor(first), 0, &picture, &depth);
    *width = picture.width;
    *height = picture.height;
    if (dateTime && !picture.dateTime.empty()) *dateTime = picture.dateTime;
    return status;
}

// A session on a frame of the given size with the controls set: the set-up,
// the --from-* lens, then --set and --key.
RunStatus startControls(const RunOptions& options, const std::string& pluginPath, int width,
                        int height, SparkSession& session) {
    RunStatus status = session.load(pluginPath);
    if (status.ok()) status = session.start(width, height, kHostDepth8, 1.0f, options.setupPath);
    if (status.ok()) status = applyLensSource(options, session, width, height);
    if (status.ok()) status = applyControlValues(options.sets, options.keys, session.controls());
    return status;
}

// The frames of a run without pictures to render: --frames, else the
// INPUT sequence's, else frame 1.
RunStatus framesOf(const RunOptions& options, std::vector<unsigned>* frames) {
    std::string error;
    if (!options.frames.empty())
        return parseFrameRange(options.frames, frames, &error)
                   ? RunStatus::success()
                   : RunStatus::failure(ExitCode::Usage, error);
    FramePattern input;
    *frames = {1};
    if (!options.files.empty() && FramePattern::parse(options.files[0], &input, &error) &&
        input.isSequence())
        *frames = input.existingFrames();
    return RunStatus::success();
}

// A text file written whole or not at all.
RunStatus writeText(const std::string& path, const std::string& text) {
    safeio::OutputFile file;
    std::string reason;
    if (!file.open(path, &reason) || !file.write(text.data(), text.size()) ||
        !file.commit(&reason)) {
        if (reason.empty()) reason = file.failure();
        return RunStatus::failure(ExitCode::Output, "cannot write " + path + ": " + reason);
    }
    return RunStatus::success();
}

std::string residualText(bool exact, const Residual& residual) {
    char text[160];
    std::snprintf(text, sizeof text, "%s, residual largest %.3f px, RMS %.3f px",
                  exact ? "exact" : "fitted", residual.largest, residual.rms);
    return text;
}

// The camera's focal length in pixels of a frame width wide, from the lens's
// focal length and the crop factor (a crop factor of 1 is 36 mm film).
double focalPixels(const RunOptions& options, int width) {
    const double crop = options.cropFactor > 0.0 ? options.cropFactor : 1.0;
    return options.focalMm * crop * width / kFullFrameWidthMm;
}

RunStatus exportOpenCv(const RunOptions& options, const LensSetup& setup, int width, int height) {
    OpenCvExport result;
    RunStatus status =
        statusOf(convertToOpenCv(setup, width, height, focalPixels(options, width), result));
    if (status.ok()) status = writeText(options.toOpenCv, formatOpenCvCalibration(result));
    if (status.ok())
        std::printf("to-opencv: %s (fx = fy = %.6g px, %dx%d; %s)\n", options.toOpenCv.c_str(),
                    result.calibration.fx, width, height,
                    residualText(result.exact, result.residual).c_str());
    return status;
}

RunStatus exportLensfun(const RunOptions& options, const LensSetup& setup, int width, int height) {
    LensfunExport result;
    const double crop = options.cropFactor > 0.0 ? options.cropFactor : 1.0;
    RunStatus status = statusOf(
        convertToLensfun(setup, width, height, options.focalMm, crop, kExportedLensName, result));
    if (status.ok()) status = writeText(options.toLensfun, result.xml);
    if (status.ok())
        std::printf("to-lensfun: %s (poly5 k1=%.9g k2=%.9g at %g mm, crop %g; %s)\n",
                    options.toLensfun.c_str(), result.k1, result.k2, options.focalMm, crop,
                    residualText(result.exact, result.residual).c_str());
    return status;
}

// Every output a run without pictures writes can be made, before any work.
RunStatus checkOutputs(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        if (path.empty()) continue;
        RunStatus status = checkOutputFolder(path);
        if (!status.ok()) return status;
    }
    return RunStatus::success();
}
}  // namespace

RunStatus applyLensSource(const RunOptions& options, SparkSession& session, int width, int height) {
    if (!options.lensSource()) return RunStatus::success();
    LensConversion conversion;
    RunStatus status = statusOf(convertSource(options, width, height, &conversion));
    if (!status.ok()) return status;
    const std::vector<std::string> sets = assignmentsOf(conversion.setup);
    status = applyControlValues(sets, {}, session.controls());
    if (!status.ok()) return status;
    std::string text;
    for (const std::string& set : sets) text += (text.empty() ? "" : " ") + set;
    std::printf("%s: %s (%s)\n", options.fromOpenCv.empty() ? "from-lensfun" : "from-opencv",
                text.c_str(), residualText(conversion.exact, conversion.residual).c_str());
    std::fflush(stdout);
    return RunStatus::success();
}

RunStatus runStMap(const RunOptions& options, const std::string& pluginPath) {
    int width = 0, height = 0;
    std::vector<unsigned> frames;
    FramePattern output;
    std::string error, dateTime;
    RunStatus status = frameSizeOf(options, &width, &height, &dateTime);
    if (status.ok()) status = framesOf(options, &frames);
    if (status.ok() && !FramePattern::parse(options.stMapPath, &output, &error))
        status = RunStatus::failure(ExitCode::Usage, error);
    if (status.ok() && frames.empty())
        status = RunStatus::failure(ExitCode::Input, "no input files match " + options.files[0]);
    if (status.ok())
        status = checkOutputs({output.fileFor(frames.front()), output.fileFor(frames.back())});
    if (!status.ok()) return status;
    SparkSession session(options.quiet, options.processors);
    status = startControls(options, pluginPath, width, height, session);
    if (status.ok()) session.keepUnkeyedValues();
    for (size_t i = 0; status.ok() && i < frames.size(); ++i) {
        session.controls().applyCurves(simhost::Host::instance(), frames[i]);
        LensSetup setup;
        StMap map;
        status = lensSetupOf(session.controls(), "--stmap", &setup);
        if (status.ok())
            status = statusOf(makeStMap(setup, width, height, options.overscanPercent, map));
        const std::string name = output.fileFor(frames[i]);
        if (status.ok()) {
            RgbSamples samples;
            samples.type = SampleType::Float;
            samples.floats = std::move(map.rgb);
            status = writeImage(name, map.width, map.height, samples, dateTime);
        }
        if (status.ok() && (options.verbose || frames.size() == 1))
            std::printf("stmap: %s (%dx%d, Mode=%s)\n", name.c_str(), map.width, map.height,
                        modeName(setup.mode));
    }
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}

RunStatus runExportLens(const RunOptions& options, const std::string& pluginPath) {
    int width = 0, height = 0;
    RunStatus status = frameSizeOf(options, &width, &height);
    if (status.ok()) status = checkOutputs({options.toOpenCv, options.toLensfun});
    if (!status.ok()) return status;
    SparkSession session(options.quiet, options.processors);
    status = startControls(options, pluginPath, width, height, session);
    LensSetup setup;
    if (status.ok()) status = lensSetupOf(session.controls(), options.modeOptions.front(), &setup);
    if (status.ok() && !options.toOpenCv.empty())
        status = exportOpenCv(options, setup, width, height);
    if (status.ok() && !options.toLensfun.empty())
        status = exportLensfun(options, setup, width, height);
    const RunStatus finished = session.finish(status.ok() ? options.saveSetupPath : "");
    return status.ok() ? finished : status;
}
