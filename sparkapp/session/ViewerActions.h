// ViewerActions: what a user does in the plug-in's viewer, done through the
// simulated host for sparkrun's --lines, --autofind and --overlay, on the
// first frame before any frame is written.
//
// Showing: the plug-in renders the frame once (SparkProcess, so that its
// model knows the frame size) and draws its overlay once (SparkOverlay, so
// that its drawing surface knows it).
//
// Drawing: positions are in image pixels as a lines file gives them (x right,
// y down from the top-left pixel centre); the point (px, py) is the frame
// point (px, height - 1 - py) (the row rule of simhost/Viewer.h), sent at the
// frame's full size (viewer scale 1, ratio 1). For each line "LineEdit" goes
// to "No Action" and then to "Add Line" (the record written, then its
// callback, as the host does when the user picks an entry), which starts a
// new line, and each point is one click (press, release). After the last line
// "LineEdit" is left at "No Action", where the overlay shows the centre.
// "Auto Preview" is switched off while the lines are drawn (it would render
// the frame after every line) and back on afterwards.
//
// AutoFind: a fit that leaves the range of a control it sets (Radial1 at
// 25000, as lines of coincident points give) is refused with exit 2, and so
// are lines that cannot constrain it (every inner point on an end), before
// the button is pressed. An allocation that fails in any plug-in call is
// exit 7 (AllocationWatch.h).
//
// Proxy: the plug-in keeps the lines in fractions of the frame, so they hold
// at any proxy. The viewer's work runs with the proxy menu at "FULL" (the
// render, the fit, and the overlay, whose error points are in the rendered
// frame's pixels); the setting is put back when the actions end, for the
// frames written.
#pragma once

#include <string>

#include "FilePixels.h"
#include "LinesFile.h"
#include "RunStatus.h"
#include "SparkSession.h"

class ViewerActions {
  public:
    // The session is started; frame is the one shown.
    ViewerActions(SparkSession& session, unsigned frame, unsigned totalFrames);
    ~ViewerActions();
    ViewerActions(const ViewerActions&) = delete;
    ViewerActions& operator=(const ViewerActions&) = delete;

    // Before any work: a plug-in without the entry points or controls the
    // work needs is exit 5; "Clear Overlay" on (the plug-in then draws and
    // handles nothing) and animation keys on a control the fit sets are
    // exit 2; an overlay of a frame wider or taller than the viewer draws
    // (simhost::Viewer::kMaxPictureSide) is exit 4.
    RunStatus check(bool drawLines, bool autoFind, bool overlay) const;

    RunStatus show(const FilePixels& picture);
    RunStatus drawLines(const LinesFile& lines);
    // Presses "AutoFind". *fitted reads "Radial1=... Radial2=... Mode=...".
    // A message from the plug-in (no lines, a failed fit), lines that do not
    // constrain the fit and a fit outside a control's range are exit 2.
    RunStatus autoFind(std::string* fitted);
    // Draws the overlay for real over the picture and writes it to path.
    RunStatus writeOverlay(const FilePixels& picture, const std::string& path);

  private:
    void selectEntry(const Control& menu, int entry);
    void setAutoPreview(bool on);
    RunStatus drawEach(const Control& lineEdit, const LinesFile& lines);
    RunStatus checkFitInRange() const;

    SparkSession& session_;
    unsigned frame_;
    unsigned totalFrames_;
    size_t linesDrawn_ = 0;
    size_t linesWithAFit_ = 0;       // of them, lines of three points or more
    size_t linesThatConstrain_ = 0;  // of those, lines with an inner point on neither end
    const Control* proxy_ = nullptr;
    int proxyValue_ = 0;
};
