// ViewSession: the viewer's plug-in session, driven only through the
// records, callbacks and entry points, as the host drives it. Everything
// here runs on the one thread that calls the plug-in (SessionWorker's), one
// call at a time: the plug-in is not thread-safe.
//
// It loads the plug-in (its controls are known from the records before any
// frame), opens an image or a sequence as sparkrun reads them, starts the
// session at the first frame's size with the set-up, --set and --key, draws
// --lines and presses AutoFind with the same ViewerActions as sparkrun, and
// then serves the user: a control changed (record, then callback with
// argument 1: the plug-in re-renders itself when "Auto Preview" is on), a
// pointer event (SparkInteract in frame units, the host's screen units and
// zoom), a frame stepped to, an animation key set, the overlay drawn for a
// view, set-ups loaded and saved as sparkrun reads and writes them.
//
// Frames come back as DisplayFrames (rows bottom first). Controls are
// identified by their index in controls(), which is record order.
#pragma once

#include <SimHost.h>

#include <memory>
#include <string>
#include <vector>

#include "ControlNames.h"
#include "DisplayFrame.h"
#include "FramePlan.h"
#include "ImageFiles.h"
#include "OverlayCapture.h"
#include "RunOptions.h"
#include "RunStatus.h"
#include "SparkSession.h"

// A control's value as the panel shows it.
struct ControlValue {
    double number = 0.0;  // float and integer fields
    int entry = 0;        // menus, 0-based
    bool on = false;      // check boxes
    std::vector<int> keyFrames;
};

// Where the frame sits in the viewer: the host's FrameBufferX/Y and zoom.
struct ViewPlacement {
    int originX = 0;
    int originY = 0;
    double scale = 1.0;
    float zoomArgument = 1.0f;
};

// What a step changed, for the interface.
struct StepResult {
    bool frameChanged = false;  // `result` holds a new frame
    DisplayFrame result;
    std::string message;  // what the plug-in said, if anything
};

class ViewSession {
  public:
    explicit ViewSession(const RunOptions& options);
    ~ViewSession();

    RunStatus loadPlugin();
    const ControlNames& controls() const { return *controls_; }
    // Page of a control (0 to 4) and the page titles the plug-in set.
    static int pageOf(const Control& control);
    std::string pageTitle(int page) const;

    // Opens an image or a sequence pattern (frames "A-B" or empty: every
    // file found). The first open starts the session with the set-up, the
    // sets and keys and the lines of the options; a later one of another
    // size restarts it with the values as they are.
    RunStatus open(const std::string& name, const std::string& frames, StepResult* step);
    bool started() const { return started_; }
    const std::string& imageName() const { return imageName_; }
    const std::vector<unsigned>& frames() const { return plan_.frames; }
    unsigned frame() const { return frame_; }
    const DisplayFrame& input() const { return input_; }

    RunStatus showFrame(unsigned frame, StepResult* step);
    RunStatus render(StepResult* step);

    RunStatus setNumber(size_t control, double value, StepResult* step);
    RunStatus setEntry(size_t control, int entry, StepResult* step);
    RunStatus setOn(size_t control, bool on, StepResult* step);
    RunStatus press(size_t control, StepResult* step);
    // Sets or removes the key of a float control at the current frame.
    RunStatus toggleKey(size_t control, StepResult* step);

    // One pointer event at screen point (sx, sy) = frame point (x, y) with
    // the pen pressure (0: no button). *valuesMoved tells whether a control
    // value changed (a dragged centre) without the plug-in rendering.
    RunStatus pointer(const ViewPlacement& view, int sx, int sy, float x, float y, float pressure,
                      StepResult* step, bool* valuesMoved);
    GlCommands overlay(const ViewPlacement& view);

    std::vector<ControlValue> values() const;
    bool autoPreview() const;
    bool dirty() const { return setupText() != savedText_; }
    // remember: the saved values are the new unchanged state (not for a render's copy).
    RunStatus saveSetup(const std::string& path, bool remember = true);
    RunStatus loadSetup(const std::string& path, StepResult* step);
    // The lines are drawn and kept by the plug-in while it is loaded.
    bool linesDrawn() const { return linesDrawn_; }
    void noteLinesDrawn() { linesDrawn_ = true; }

  private:
    RunStatus readFrame(unsigned frame);
    RunStatus start();
    RunStatus runStartupLines(StepResult* step);
    RunStatus callback(const Control& control, StepResult* step);
    void takeReturned(unsigned long* returned, StepResult* step);
    void finishStep(StepResult* step);
    std::string setupText() const;
    SparkInfoStruct info(const ViewPlacement* view = nullptr) const;
    unsigned total() const { return static_cast<unsigned>(plan_.frames.size()); }

    RunOptions options_;
    std::string pluginPath_;
    std::unique_ptr<SparkSession> session_;
    std::unique_ptr<ControlNames> controls_;
    FramePlan plan_;
    ReadRequest nextRead_;
    FilePixels picture_;
    int depth_ = 0;
    DisplayFrame input_;
    std::string imageName_;
    unsigned frame_ = 1;
    bool started_ = false;
    bool linesDrawn_ = false;
    std::string savedText_;
};
