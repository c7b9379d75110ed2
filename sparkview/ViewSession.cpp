// The viewer's plug-in session.
#include "ViewSession.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "ControlAssignments.h"
#include "FrameMemory.h"
#include "ImageFiles.h"
#include "PluginConsole.h"
#include "ProcessSignals.h"
#include "ProgramDefaults.h"
#include "ViewerActions.h"

namespace {
const int kCallbackArgument = 1;  // "end of change": the plug-in may re-render
const int kOutputBufferId = 1;
const int kInputBufferId = 2;
// A host page holds seven columns of five controls; numbers run on from page to page.
const int kControlsPerPage = 35;
const int kPages = 5;
const char kAutoPreview[] = "Auto Preview";

RunStatus inputFailure(const std::string& text) {
    return RunStatus::failure(ExitCode::Input, text);
}

std::vector<char> writable(const std::string& text) {
    std::vector<char> out(text.begin(), text.end());
    out.push_back('\0');
    return out;
}

float* floatValue(const Control& control) {
    if (control.recordKind == "UserFloat")
        return &static_cast<SparkUserFloatStruct*>(control.record)->Value;
    return &static_cast<SparkFloatStruct*>(control.record)->Value;
}

bool isFile(const std::string& path) {
    struct stat found;
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}
}  // namespace

ViewSession::ViewSession(const RunOptions& options) : options_(options) {
    if (!options_.processors) options_.processors = defaultProcessors();
    pluginPath_ = options_.pluginPath.empty() ? defaultPluginPath() : options_.pluginPath;
}

ViewSession::~ViewSession() {
    if (session_ && started_) session_->finish("");
}

RunStatus ViewSession::loadPlugin() {
    session_ = std::make_unique<SparkSession>(options_.quiet, options_.processors);
    session_->setFloatEncoding(options_.floatEncoding);
    RunStatus status = session_->load(pluginPath_);
    if (!status.ok()) return status;
    controls_ = std::make_unique<ControlNames>(session_->plugin().records());
    return RunStatus::success();
}

int ViewSession::pageOf(const Control& control) {
    const int page = (control.number - 1) / kControlsPerPage;
    return page < kPages ? page : kPages - 1;
}

std::string ViewSession::pageTitle(int page) const {
    const auto& titles = simhost::Host::instance().pageTitles;
    const auto found = titles.find(page);
    if (found != titles.end() && !found->second.empty()) return found->second;
    return "Page " + std::to_string(page + 1);
}

SparkInfoStruct ViewSession::info(const ViewPlacement* view) const {
    SparkInfoStruct record = session_->viewerInfo(frame_, total());
    if (view) {
        record.FrameBufferX = view->originX;
        record.FrameBufferY = view->originY;
    }
    return record;
}

RunStatus ViewSession::readFrame(unsigned frame) {
    RunStatus status = readImage(plan_.input.fileFor(frame), nextRead_, &picture_, &depth_);
    if (status.ok()) input_ = displayFromPicture(picture_);
    return status;
}

// The plan of an image or a sequence, as sparkrun makes it for its input.
static RunStatus planInput(const std::string& name, const std::string& frames, FramePlan* plan) {
    std::string error;
    if (!FramePattern::parse(name, &plan->input, &error))
        return RunStatus::failure(ExitCode::Usage, error);
    plan->frames.clear();
    if (!frames.empty()) {
        if (!parseFrameRange(frames, &plan->frames, &error))
            return RunStatus::failure(ExitCode::Usage, error);
    } else if (plan->input.isSequence()) {
        plan->frames = plan->input.existingFrames();
        if (plan->frames.empty()) return inputFailure("no files match " + plan->input.text());
    } else {
        plan->frames = {1};
    }
    const std::string first = plan->input.fileFor(plan->frames.front());
    if (!isFile(first)) return inputFailure("input file not found: " + first);
    return RunStatus::success();
}

RunStatus ViewSession::open(const std::string& name, const std::string& frames, StepResult* step) {
    FramePlan plan;
    RunStatus status = planInput(name, frames, &plan);
    if (!status.ok()) return status;
    ReadRequest request;
    request.requestedDepth = options_.depth;
    request.memoryLimit = options_.maxMemory ? options_.maxMemory : memoryAvailable();
    request.limitIsOption = options_.maxMemory != 0;
    request.forProcessing = true;
    FilePixels picture;
    int depth = 0;
    status = readImage(plan.input.fileFor(plan.frames.front()), request, &picture, &depth);
    if (!status.ok()) return status;
    const bool sameShape = started_ && picture.width == session_->width() &&
                           picture.height == session_->height() && depth == session_->depth();
    plan_.input = plan.input;
    plan_.frames = plan.frames;
    picture_ = std::move(picture);
    depth_ = depth;
    input_ = displayFromPicture(picture_);
    nextRead_ = ReadRequest();
    nextRead_.requestedDepth = depth_;
    nextRead_.expectWidth = picture_.width;
    nextRead_.expectHeight = picture_.height;
    imageName_ = name;
    frame_ = plan_.frames.front();
    if (!sameShape) {
        status = start();
        if (!status.ok()) return status;
    }
    status = showFrame(frame_, step);
    if (status.ok() && !options_.linesPath.empty() && !linesDrawn_) status = runStartupLines(step);
    return status;
}

// The first start loads the set-up and applies --set and --key; a restart
// at another size keeps the values as they are.
RunStatus ViewSession::start() {
    const bool first = savedText_.empty();
    if (started_) {
        started_ = false;
        RunStatus finished = session_->finish("");
        if (!finished.ok()) return finished;
    }
    const std::string setup =
        first && isFile(options_.setupPath) ? options_.setupPath : std::string();
    RunStatus status =
        session_->start(picture_.width, picture_.height, depth_, picture_.pixelAspect, setup);
    if (!status.ok()) return status;
    started_ = true;
    if (!first) return RunStatus::success();
    savedText_ = setupText();
    return applyControlValues(options_.sets, options_.keys, *controls_);
}

RunStatus ViewSession::runStartupLines(StepResult* step) {
    LinesFile lines;
    std::string error;
    if (!isFile(options_.linesPath))
        return inputFailure("cannot open the lines file " + options_.linesPath);
    if (!readLinesFile(options_.linesPath, lines, error) ||
        !checkLinesInFrame(lines, picture_.width, picture_.height, error))
        return RunStatus::failure(ExitCode::Usage, options_.linesPath + ": " + error);
    GlCommands discarded;  // the actions draw the overlay once; nothing to show of it
    CaptureScope capture(&discarded);
    ViewerActions actions(*session_, frame_, total());
    RunStatus status = actions.check(true, options_.autoFind, false);
    if (status.ok()) status = actions.show(picture_);
    if (status.ok()) status = actions.drawLines(lines);
    linesDrawn_ = status.ok();
    std::string fitted;
    if (status.ok() && options_.autoFind) status = actions.autoFind(&fitted);
    if (!status.ok()) return status;
    if (!fitted.empty()) std::printf("autofind: %s\n", fitted.c_str());
    std::fflush(stdout);
    status = render(step);
    if (!fitted.empty()) step->message = "AutoFind: " + fitted;
    return status;
}

RunStatus ViewSession::showFrame(unsigned frame, StepResult* step) {
    if (!started_) return RunStatus::success();
    if (frame != frame_ && plan_.input.isSequence()) {
        RunStatus status = readFrame(frame);
        if (!status.ok()) return status;
    }
    frame_ = frame;
    const unsigned char* result = nullptr;
    std::string animated;
    RunStatus status = session_->process(frame_, total(), picture_, &result, &animated);
    if (!status.ok()) return status;
    step->result = displayFromHostBuffer(result, session_->width(), session_->height(), depth_);
    step->result.frame = frame_;
    step->frameChanged = true;
    return RunStatus::success();
}

RunStatus ViewSession::render(StepResult* step) { return showFrame(frame_, step); }

void ViewSession::takeReturned(unsigned long* returned, StepResult* step) {
    if (!returned) return;
    simhost::Host& host = simhost::Host::instance();
    for (int id : {kOutputBufferId, kInputBufferId}) {
        simhost::FrameBuffer& buffer = host.buffers[id];
        if (returned == buffer.storage.data() && buffer.width == session_->width() &&
            buffer.height == session_->height() && buffer.depth == session_->depth()) {
            step->result =
                displayFromHostBuffer(buffer.bytes(), buffer.width, buffer.height, buffer.depth);
            step->result.frame = frame_;
            step->frameChanged = true;
            return;
        }
    }
}

void ViewSession::finishStep(StepResult* step) {
    const std::string said = session_->relayMessages();
    if (!said.empty()) step->message = said;
}

RunStatus ViewSession::callback(const Control& control, StepResult* step) {
    if (!started_) return RunStatus::success();
    unsigned long* returned;
    {
        CrashContext during("in the plug-in's callback of " + control.symbol);
        PluginConsole console(options_.quiet);
        returned = session_->plugin().callback(control.symbol, kCallbackArgument, info());
    }
    takeReturned(returned, step);
    finishStep(step);
    return RunStatus::success();
}

RunStatus ViewSession::setNumber(size_t index, double value, StepResult* step) {
    const Control& control = controls_->controls().at(index);
    if (control.kind == ControlKind::Integer) {
        static_cast<SparkIntStruct*>(control.record)->Value = static_cast<int>(value);
    } else if (control.kind == ControlKind::Float) {
        *floatValue(control) = static_cast<float>(value);
        auto& keys = simhost::Host::instance().curveKeys;
        const auto found = keys.find(control.number);
        // A keyed control changed by hand keys the change at this frame.
        if (found != keys.end() && !found->second.empty())
            found->second[static_cast<int>(frame_)] = static_cast<float>(value);
    }
    return callback(control, step);
}

RunStatus ViewSession::setEntry(size_t index, int entry, StepResult* step) {
    const Control& control = controls_->controls().at(index);
    static_cast<SparkPupStruct*>(control.record)->Value = entry;
    return callback(control, step);
}

RunStatus ViewSession::setOn(size_t index, bool on, StepResult* step) {
    const Control& control = controls_->controls().at(index);
    static_cast<SparkBooleanStruct*>(control.record)->Value = on ? 1 : 0;
    return callback(control, step);
}

RunStatus ViewSession::press(size_t index, StepResult* step) {
    return callback(controls_->controls().at(index), step);
}

RunStatus ViewSession::toggleKey(size_t index, StepResult* step) {
    const Control& control = controls_->controls().at(index);
    if (control.kind != ControlKind::Float) return RunStatus::success();
    auto& keys = simhost::Host::instance().curveKeys;
    auto& curve = keys[control.number];
    const int at = static_cast<int>(frame_);
    if (curve.count(at)) {
        curve.erase(at);
        if (curve.empty()) keys.erase(control.number);
    } else {
        curve[at] = *floatValue(control);
    }
    return render(step);
}

RunStatus ViewSession::pointer(const ViewPlacement& view, int sx, int sy, float x, float y,
                               float pressure, StepResult* step, bool* valuesMoved) {
    *valuesMoved = false;
    if (!started_) return RunStatus::success();
    std::vector<float> before;
    for (const Control& control : controls_->controls())
        if (control.kind == ControlKind::Float) before.push_back(*floatValue(control));
    unsigned long* returned;
    {
        CrashContext during("in the plug-in's SparkInteract");
        PluginConsole console(options_.quiet);
        returned =
            session_->plugin().interact(info(&view), sx, sy, pressure, x, y, view.zoomArgument);
    }
    takeReturned(returned, step);
    finishStep(step);
    size_t i = 0;
    auto& keys = simhost::Host::instance().curveKeys;
    for (const Control& control : controls_->controls()) {
        if (control.kind != ControlKind::Float) continue;
        const float now = *floatValue(control);
        if (now != before[i++]) {
            *valuesMoved = true;
            const auto found = keys.find(control.number);
            if (found != keys.end() && !found->second.empty())
                found->second[static_cast<int>(frame_)] = now;
        }
    }
    if (step->frameChanged) *valuesMoved = false;
    return RunStatus::success();
}

GlCommands ViewSession::overlay(const ViewPlacement& view) {
    GlCommands commands;
    if (!started_) return commands;
    {
        CaptureScope capture(&commands);
        CrashContext during("in the plug-in's SparkOverlay");
        PluginConsole console(options_.quiet);
        session_->plugin().overlay(info(&view), view.zoomArgument);
    }
    session_->relayMessages();
    return commands;
}

std::vector<ControlValue> ViewSession::values() const {
    std::vector<ControlValue> out;
    const auto& keys = simhost::Host::instance().curveKeys;
    for (const Control& control : controls_->controls()) {
        ControlValue value;
        switch (control.kind) {
            case ControlKind::Float: {
                value.number = *floatValue(control);
                const auto found = keys.find(control.number);
                if (found != keys.end())
                    for (const auto& key : found->second) value.keyFrames.push_back(key.first);
                break;
            }
            case ControlKind::Integer:
                value.number = static_cast<SparkIntStruct*>(control.record)->Value;
                break;
            case ControlKind::Menu:
                value.entry = static_cast<SparkPupStruct*>(control.record)->Value;
                break;
            case ControlKind::Check:
                value.on = static_cast<SparkBooleanStruct*>(control.record)->Value != 0;
                break;
            default:
                break;
        }
        out.push_back(value);
    }
    return out;
}

bool ViewSession::autoPreview() const {
    const Control* check = controls_->named(kAutoPreview, ControlKind::Check);
    return !check || static_cast<SparkBooleanStruct*>(check->record)->Value != 0;
}

// The values a set-up holds, as text to compare; a keyed control's record
// follows its curve from frame to frame, so its keys stand for it.
std::string ViewSession::setupText() const {
    const auto& keys = simhost::Host::instance().curveKeys;
    std::string text;
    char line[96];
    for (const Control& control : controls_->controls()) {
        if (control.kind == ControlKind::Button) continue;
        if (control.kind == ControlKind::Float && keys.count(control.number)) continue;
        std::snprintf(line, sizeof line, "%s=", control.symbol.c_str());
        text += line;
        text += control.kind == ControlKind::Float
                    ? std::to_string(static_cast<double>(*floatValue(control)))
                    : controls_->valueText(control);
        text += "\n";
    }
    for (const auto& curve : keys)
        for (const auto& key : curve.second) {
            std::snprintf(line, sizeof line, "key %d %d %.9g\n", curve.first, key.first,
                          static_cast<double>(key.second));
            text += line;
        }
    return text.empty() ? "-" : text;
}

RunStatus ViewSession::saveSetup(const std::string& path, bool remember) {
    simhost::Host& host = simhost::Host::instance();
    host.setupFiles = true;
    host.setupError.clear();
    std::vector<char> name = writable(path);
    sparkSaveSetup(name.data());
    host.setupFiles = false;
    if (!host.setupError.empty()) return RunStatus::failure(ExitCode::Output, host.setupError);
    if (remember) savedText_ = setupText();
    return RunStatus::success();
}

RunStatus ViewSession::loadSetup(const std::string& path, StepResult* step) {
    if (!isFile(path)) return inputFailure("cannot read the set-up " + path + ": not a file");
    simhost::Host& host = simhost::Host::instance();
    host.setupFiles = true;
    host.setupError.clear();
    std::vector<char> name = writable(path);
    sparkLoadSetup(name.data());
    host.setupFiles = false;
    if (!host.setupError.empty()) return inputFailure(host.setupError);
    savedText_ = setupText();
    return render(step);
}
