// SparkSession: one plug-in driven through the simulated host the way the
// host drives it for a render: load, SparkMemoryTempBuffers, SparkClips,
// SparkInitialise with an information record for the frame size and depth
// (its Name is the set-up file, which the plug-in loads), then per frame
// SparkProcessStart and SparkProcess with the frame number, and
// SparkUnInitialise at the end (which saves the set-up).
//
// Buffers: id 2 holds the input frame, id 1 the output frame (cleared before
// each frame); both use the host layout of HostPixels. Set-up files are real
// files only when the user names one: a loaded set-up is never written back
// unless it is also the --save-setup file. A plug-in that does not load or
// save its set-up itself gets it done by the session.
//
// What the plug-in reports through sparkError / sparkMessage is passed on to
// standard error ("plug-in: ..."), unless quiet.
//
// A keyed control's record holds its curve's value at the frame being
// rendered; before the set-up is saved it gets back the value it had before
// the first frame, so that the saved set-up does not depend on which frames
// a run rendered (chunks of a sequence save the same set-up as one run).
//
// The plug-in stays loaded until the process ends, as in a host that quits
// with its plug-ins loaded: a plug-in may keep objects for the whole life of
// its library, which unloading it early would turn into lost memory. One
// session per process.
#pragma once

#include <SimHost.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ControlNames.h"
#include "FilePixels.h"
#include "FloatEncoding.h"
#include "HostPixels.h"
#include "RunStatus.h"

class SparkSession {
  public:
    SparkSession(bool quiet, int processors);
    ~SparkSession();
    SparkSession(const SparkSession&) = delete;
    SparkSession& operator=(const SparkSession&) = delete;

    RunStatus load(const std::string& pluginPath);
    // How float pictures are put into the host frames (before process).
    void setFloatEncoding(FloatEncoding encoding) { floatEncoding_ = encoding; }
    RunStatus start(int width, int height, int depth, float pixelAspect,
                    const std::string& setupPath);
    // Valid after start.
    const ControlNames& controls() const { return *controls_; }

    // Runs one frame; *result points at the frame the plug-in returned, in the
    // host layout at the session's size and depth, valid until the next call.
    RunStatus process(unsigned frame, unsigned totalFrames, const FilePixels& picture,
                      const unsigned char** result, std::string* animated);

    // For the pipelined frame loop, which fills host frames on other threads:
    // a host frame's storage at the session's size and depth (made once per
    // buffer, never per frame).
    HostFrame newHostFrame() const;
    // Runs one frame whose input is already in *input (a filled host frame):
    // it is exchanged with the host's input buffer (so *input then holds the
    // previous one, free to fill again), the plug-in runs, and the frame it
    // returned is exchanged into *result, whose free storage the host keeps
    // for the next frame. Nothing is allocated or cleared.
    RunStatus processFilled(unsigned frame, unsigned totalFrames, HostFrame* input,
                            HostFrame* result, std::string* animated);

    // Keeps each keyed control's value as it is now, for the set-up saved at
    // the end (process does this at the first frame; a run that applies the
    // curves itself calls it first).
    void keepUnkeyedValues();

    // SparkUnInitialise; writes the set-up to savePath when it is not empty.
    RunStatus finish(const std::string& savePath);

    // For the viewer's work (ViewerActions): the plug-in, an information
    // record of the frame as the plug-in's viewer shows it (Context set), and
    // the plug-in's messages since the last call passed on; returns the last
    // error or message text.
    simhost::Plugin& plugin() { return plugin_; }
    bool quiet() const { return quiet_; }
    SparkInfoStruct viewerInfo(unsigned frame, unsigned totalFrames) const;
    std::string relayMessages();

    int width() const { return width_; }
    int height() const { return height_; }
    int depth() const { return depth_; }

  private:
    // SparkProcessStart and SparkProcess on the buffers as they are; the
    // answer checked to be one of them (kOutputBufferId or kInputBufferId).
    RunStatus runPlugin(unsigned frame, unsigned totalFrames, std::string* animated,
                        int* returnedId);
    SparkInfoStruct infoFor(unsigned frame, unsigned totalFrames, const std::string& name) const;

    bool quiet_;
    FloatEncoding floatEncoding_ = FloatEncoding::Linear;
    simhost::Plugin& plugin_;
    std::unique_ptr<ControlNames> controls_;
    std::string pluginPath_;
    std::string setupPath_;
    int width_ = 0;
    int height_ = 0;
    int depth_ = 0;
    bool started_ = false;
    std::vector<std::pair<const Control*, float>> unkeyedValues_;  // taken at the first frame
    bool valuesTaken_ = false;
    std::vector<std::string> messages_;  // what the plug-in said, not yet relayed
};
