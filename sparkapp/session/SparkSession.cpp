// Driving a plug-in through the simulated host.
#include "SparkSession.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "AllocationWatch.h"
#include "HostPixels.h"
#include "PluginConsole.h"
#include "ProcessSignals.h"

namespace {
const int kOutputBufferId = 1;
const int kInputBufferId = 2;
const unsigned kSupportedClips = 1;
const char kNoContext = 0;      // a render: the plug-in's viewer is not on screen
const char kViewerContext = 1;  // events and drawing of the viewer that shows the plug-in

// Never destroyed, so the library is not unloaded before the process ends.
simhost::Plugin& residentPlugin() {
    static simhost::Plugin* plugin = new simhost::Plugin;
    return *plugin;
}

std::vector<char> writableText(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    return buffer;
}
}  // namespace

SparkSession::SparkSession(bool quiet, int processors) : quiet_(quiet), plugin_(residentPlugin()) {
    installAllocationWatch();
    allocationFailed();  // what failed before is not the plug-in's
    simhost::Host& host = simhost::Host::instance();
    host.reset();
    host.processors = processors;
    host.messageSink = [this](const std::string& text) { messages_.push_back(text); };
}

SparkSession::~SparkSession() { simhost::Host::instance().messageSink = nullptr; }

RunStatus SparkSession::load(const std::string& pluginPath) {
    pluginPath_ = pluginPath;
    std::string error;
    bool loaded;
    {
        CrashContext during("while loading the plug-in " + pluginPath);
        PluginConsole console(quiet_);
        // dlopen searches the library path for a name without a slash; a user means a file.
        const bool bare = pluginPath.find('/') == std::string::npos;
        loaded = plugin_.load(bare ? "./" + pluginPath : pluginPath, &error);
    }
    if (!loaded) return RunStatus::failure(ExitCode::Plugin, "cannot load plug-in: " + error);
    if (!plugin_.symbol("SparkProcess"))
        return RunStatus::failure(ExitCode::Plugin,
                                  "not a plug-in: no SparkProcess entry point in " + pluginPath);
    return RunStatus::success();
}

SparkInfoStruct SparkSession::infoFor(unsigned frame, unsigned totalFrames,
                                      const std::string& name) const {
    SparkInfoStruct info = simhost::Host::instance().makeInfo(width_, height_, depth_, frame, name);
    info.TotalFrameNo = totalFrames;
    info.Context = kNoContext;
    return info;
}

SparkInfoStruct SparkSession::viewerInfo(unsigned frame, unsigned totalFrames) const {
    SparkInfoStruct info = infoFor(frame, totalFrames, setupPath_);
    info.Context = kViewerContext;
    return info;
}

std::string SparkSession::relayMessages() {
    std::string last;
    for (const std::string& text : messages_) {
        last = text;
        if (!quiet_) std::fprintf(stderr, "plug-in: %s\n", text.c_str());
    }
    messages_.clear();
    return last;
}

RunStatus SparkSession::start(int width, int height, int depth, float pixelAspect,
                              const std::string& setupPath) {
    simhost::Host& host = simhost::Host::instance();
    width_ = width;
    height_ = height;
    depth_ = depth;
    setupPath_ = setupPath;
    if (setupPath.size() >= sizeof(SparkInfoStruct::Name))
        return RunStatus::failure(ExitCode::Usage, "set-up file name too long: " + setupPath);
    host.pixelAspect = pixelAspect;
    host.setBuffer(kInputBufferId, width, height, depth);
    host.setBuffer(kOutputBufferId, width, height, depth);
    host.setupFiles = !setupPath.empty();
    host.setupLoads = 0;

    unsigned levels;
    int clips;
    {
        CrashContext during("in the plug-in's SparkInitialise");
        PluginConsole console(quiet_);
        plugin_.memoryTempBuffers();
        clips = plugin_.clips();
        levels = plugin_.initialise(infoFor(1, 1, setupPath));
    }
    const bool loadedSetup = host.setupLoads > 0;
    relayMessages();
    started_ = true;
    RunStatus status = checkAllocations("in the plug-in's SparkInitialise");
    if (!status.ok()) return status;
    if (levels == 0)
        return RunStatus::failure(ExitCode::Plugin,
                                  "the plug-in declined to start (SparkInitialise returned 0)");
    if (clips > static_cast<int>(kSupportedClips))
        return RunStatus::failure(ExitCode::Plugin,
                                  "the plug-in wants " + std::to_string(clips) + " input clips; " +
                                      program_invocation_short_name + " feeds one");
    if (!setupPath.empty() && !loadedSetup) {
        std::vector<char> name = writableText(setupPath);
        sparkLoadSetup(name.data());
    }
    if (!setupPath.empty() && !host.setupError.empty())
        return RunStatus::failure(ExitCode::Input, host.setupError);
    controls_ = std::make_unique<ControlNames>(plugin_.records());
    return RunStatus::success();
}

RunStatus SparkSession::process(unsigned frame, unsigned totalFrames, const FilePixels& picture,
                                const unsigned char** result, std::string* animated) {
    simhost::Host& host = simhost::Host::instance();
    if (picture.width != width_ || picture.height != height_)
        return RunStatus::failure(ExitCode::Input,
                                  "frame " + std::to_string(frame) + " is " +
                                      std::to_string(picture.width) + "x" +
                                      std::to_string(picture.height) + ", the sequence is " +
                                      std::to_string(width_) + "x" + std::to_string(height_));
    fillHostFrame(picture, depth_, host.setBuffer(kInputBufferId, width_, height_, depth_).bytes(),
                  floatEncoding_);
    host.setBuffer(kOutputBufferId, width_, height_, depth_);
    int returnedId = 0;
    const RunStatus status = runPlugin(frame, totalFrames, animated, &returnedId);
    if (status.ok()) *result = host.buffers[returnedId].bytes();
    return status;
}

RunStatus SparkSession::runPlugin(unsigned frame, unsigned totalFrames, std::string* animated,
                                  int* returnedId) {
    simhost::Host& host = simhost::Host::instance();
    keepUnkeyedValues();
    *animated = controls_->applyCurves(host, frame);

    const SparkInfoStruct info = infoFor(frame, totalFrames, setupPath_);
    unsigned long* returned;
    {
        CrashContext during("in the plug-in's SparkProcess, frame " + std::to_string(frame));
        PluginConsole console(quiet_);
        plugin_.processStart(info);
        returned = plugin_.process(info);
    }
    const std::string message = relayMessages();
    const RunStatus status =
        checkAllocations("in the plug-in's SparkProcess, frame " + std::to_string(frame));
    if (!status.ok()) return status;
    if (!returned)
        return RunStatus::failure(
            ExitCode::Processing,
            "the plug-in returned no picture for frame " + std::to_string(frame) +
                (message.empty() ? std::string() : " (it said: " + message + ")"));
    // The answer must be one of the frames the host handed out.
    for (int id : {kOutputBufferId, kInputBufferId}) {
        simhost::FrameBuffer& buffer = host.buffers[id];
        if (returned == buffer.storage.data() && buffer.width == width_ &&
            buffer.height == height_ && buffer.depth == depth_) {
            *returnedId = id;
            return RunStatus::success();
        }
    }
    return RunStatus::failure(ExitCode::Processing,
                              "the plug-in returned a buffer the host did not hand out for frame " +
                                  std::to_string(frame));
}

HostFrame SparkSession::newHostFrame() const {
    simhost::FrameBuffer frame;
    frame.resize(width_, height_, depth_);
    return std::move(frame.storage);
}

RunStatus SparkSession::processFilled(unsigned frame, unsigned totalFrames, HostFrame* input,
                                      HostFrame* result, std::string* animated) {
    simhost::Host& host = simhost::Host::instance();
    simhost::FrameBuffer& in = host.buffers[kInputBufferId];
    simhost::FrameBuffer& out = host.buffers[kOutputBufferId];
    if (in.storage.size() != input->size() || out.storage.size() != result->size())
        return RunStatus::failure(ExitCode::Internal, "a host frame of the wrong size");
    in.storage.swap(*input);
    int returnedId = 0;
    const RunStatus status = runPlugin(frame, totalFrames, animated, &returnedId);
    if (!status.ok()) return status;
    // A plug-in that hands back its input keeps it for the next frame's exchange: copied.
    if (returnedId == kInputBufferId)
        std::copy(in.storage.begin(), in.storage.end(), result->begin());
    else
        out.storage.swap(*result);
    return status;
}

void SparkSession::keepUnkeyedValues() {
    if (valuesTaken_) return;
    unkeyedValues_ = controls_->keyedValues(simhost::Host::instance());
    valuesTaken_ = true;
}

RunStatus SparkSession::finish(const std::string& savePath) {
    if (!started_) return RunStatus::success();
    started_ = false;
    simhost::Host& host = simhost::Host::instance();
    for (const auto& value : unkeyedValues_) controls_->setValue(*value.first, value.second);
    host.setupFiles = !savePath.empty();
    host.setupError.clear();
    host.setupSaves = 0;
    const std::string name = savePath.empty() ? setupPath_ : savePath;
    if (name.size() >= sizeof(SparkInfoStruct::Name))
        return RunStatus::failure(ExitCode::Usage, "set-up file name too long: " + name);
    {
        CrashContext during("in the plug-in's SparkUnInitialise");
        PluginConsole console(quiet_);
        plugin_.uninitialise(infoFor(1, 1, name));
    }
    const bool savedSetup = host.setupSaves > 0;
    relayMessages();
    const RunStatus status = checkAllocations("in the plug-in's SparkUnInitialise");
    if (!status.ok()) return status;
    if (!savePath.empty() && !savedSetup) {
        std::vector<char> text = writableText(savePath);
        sparkSaveSetup(text.data());
    }
    host.setupFiles = false;
    if (!savePath.empty() && !host.setupError.empty())
        return RunStatus::failure(ExitCode::Output, host.setupError);
    return RunStatus::success();
}
