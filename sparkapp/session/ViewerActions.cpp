// The viewer's work for sparkrun: show, draw lines, AutoFind, overlay picture.
#include "ViewerActions.h"

#include <Viewer.h>
#include <ViewerPointer.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "AllocationWatch.h"
#include "HostPixels.h"
#include "ImageFiles.h"
#include "PluginConsole.h"
#include "ProcessSignals.h"
#include "ViewerPictures.h"

namespace {
const char kLineEdit[] = "LineEdit";
const char kNoAction[] = "No Action";
const char kAddLine[] = "Add Line";
const char kAutoFind[] = "AutoFind";
const char kClearOverlay[] = "Clear Overlay";
const char kProxy[] = "Proxy";
const char kFullResolution[] = "FULL";
const char kMode[] = "Mode";
const float kViewerScale = 1.0f;
const int kCallbackArgument = 1;
// The controls AutoFind sets: the two it fits and the model it starts from.
const char* const kFitted[] = {"Radial1",    "Radial2",  "XCurvature",
                               "YCurvature", "Centre X", "Centre Y"};
// A line needs this many points for the fit to measure it.
const size_t kFittedPoints = 3;
const char kAutoPreview[] = "Auto Preview";
const char kUnconstrained[] =
    "the lines do not constrain the fit (coincident or doubled points, a single short line, or "
    "lines that disagree)";

RunStatus pluginLacks(const std::string& what, const std::string& option) {
    return RunStatus::failure(ExitCode::Plugin, "the plug-in has no " + what + ": " + option +
                                                    " needs the lens plug-in's viewer");
}

// The entry of a menu whose text is `text` (ignoring case), or -1.
int entryOf(const Control& menu, const std::string& text) {
    auto lowered = [](std::string s) {
        for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return s;
    };
    for (size_t i = 0; i < menu.entries.size(); ++i)
        if (lowered(menu.entries[i]) == lowered(text)) return static_cast<int>(i);
    return -1;
}

int& menuValue(const Control& menu) { return static_cast<SparkPupStruct*>(menu.record)->Value; }

// Whether a line the fit measures (three points or more) can constrain it:
// an inner point that lies on neither end. The plug-in measures how far the
// inner points lie from the line between the ends; with every inner point on
// an end that is 0 whatever the coefficients, and its search steps without
// end. Points are compared as they are clicked on a frame of this height.
bool constrains(const std::vector<LinePoint>& line, int height) {
    if (line.size() < kFittedPoints) return false;
    auto same = [height](const LinePoint& a, const LinePoint& b) {
        return static_cast<float>(a.x) == static_cast<float>(b.x) &&
               static_cast<float>(height - 1 - a.y) == static_cast<float>(height - 1 - b.y);
    };
    for (size_t p = 1; p + 1 < line.size(); ++p)
        if (!same(line[p], line.front()) && !same(line[p], line.back())) return true;
    return false;
}
}  // namespace

ViewerActions::ViewerActions(SparkSession& session, unsigned frame, unsigned totalFrames)
    : session_(session), frame_(frame), totalFrames_(totalFrames) {
    proxy_ = session_.controls().named(kProxy, ControlKind::Menu);
    if (proxy_) {
        proxyValue_ = menuValue(*proxy_);
        menuValue(*proxy_) = std::max(0, entryOf(*proxy_, kFullResolution));
    }
}

ViewerActions::~ViewerActions() {
    if (proxy_) menuValue(*proxy_) = proxyValue_;
}

RunStatus ViewerActions::check(bool drawLines, bool autoFind, bool overlay) const {
    const ControlNames& controls = session_.controls();
    simhost::Plugin& plugin = session_.plugin();
    if ((drawLines || overlay) && !plugin.symbol("SparkOverlay"))
        return pluginLacks("SparkOverlay entry point", drawLines ? "--lines" : "--overlay");
    if (drawLines) {
        if (!plugin.symbol("SparkInteract"))
            return pluginLacks("SparkInteract entry point", "--lines");
        const Control* lineEdit = controls.named(kLineEdit, ControlKind::Menu);
        if (!lineEdit || entryOf(*lineEdit, kNoAction) < 0 || entryOf(*lineEdit, kAddLine) < 0)
            return pluginLacks("\"LineEdit\" menu with \"No Action\" and \"Add Line\"", "--lines");
    }
    if (autoFind && !controls.named(kAutoFind, ControlKind::Button))
        return pluginLacks("\"AutoFind\" button", "--autofind");
    const long side = simhost::Viewer::kMaxPictureSide;
    if (overlay && (session_.width() > side || session_.height() > side))
        return RunStatus::failure(ExitCode::Output, "--overlay draws pictures of at most " +
                                                        std::to_string(side) +
                                                        " pixels a side; the frame is " +
                                                        std::to_string(session_.width()) + "x" +
                                                        std::to_string(session_.height()));
    const Control* clear = controls.named(kClearOverlay, ControlKind::Check);
    if ((drawLines || overlay) && clear && static_cast<SparkBooleanStruct*>(clear->record)->Value)
        return RunStatus::failure(ExitCode::Usage,
                                  "\"Clear Overlay\" is on, so the plug-in draws no overlay and "
                                  "takes no pointer: set \"Clear Overlay=off\" for --lines and "
                                  "--overlay");
    if (autoFind) {
        const simhost::Host& host = simhost::Host::instance();
        for (const char* name : kFitted) {
            const Control* control = controls.named(name, ControlKind::Float);
            if (!control) continue;
            const auto keys = host.curveKeys.find(control->number);
            if (keys != host.curveKeys.end() && !keys->second.empty())
                return RunStatus::failure(
                    ExitCode::Usage,
                    std::string("--autofind sets Radial1, Radial2, XCurvature, YCurvature, "
                                "Centre X and Centre Y, but ") +
                        name + " has animation keys (from --key or the set-up)");
        }
    }
    return RunStatus::success();
}

RunStatus ViewerActions::show(const FilePixels& picture) {
    const unsigned char* result = nullptr;
    std::string animated;
    RunStatus status = session_.process(frame_, totalFrames_, picture, &result, &animated);
    if (!status.ok()) return status;
    {
        CrashContext during("in the plug-in's SparkOverlay");
        PluginConsole console(session_.quiet());
        session_.plugin().overlay(session_.viewerInfo(frame_, totalFrames_), kViewerScale);
    }
    session_.relayMessages();
    return checkAllocations("in the plug-in's SparkOverlay");
}

void ViewerActions::selectEntry(const Control& menu, int entry) {
    menuValue(menu) = entry;
    session_.plugin().callback(menu.symbol, kCallbackArgument,
                               session_.viewerInfo(frame_, totalFrames_));
}

// "Auto Preview" re-renders the frame after every change of "LineEdit":
// off while the lines are drawn, it is set back as it was afterwards, each
// time through its record and callback as the host does.
void ViewerActions::setAutoPreview(bool on) {
    const Control* preview = session_.controls().named(kAutoPreview, ControlKind::Check);
    if (!preview) return;
    auto* record = static_cast<SparkBooleanStruct*>(preview->record);
    CrashContext during("in the plug-in's Auto Preview callback");
    PluginConsole console(session_.quiet());
    record->Value = on;
    session_.plugin().callback(preview->symbol, kCallbackArgument,
                               session_.viewerInfo(frame_, totalFrames_));
}

RunStatus ViewerActions::drawLines(const LinesFile& lines) {
    const Control& lineEdit = *session_.controls().named(kLineEdit, ControlKind::Menu);
    const Control* preview = session_.controls().named(kAutoPreview, ControlKind::Check);
    const bool previewOn = preview && static_cast<SparkBooleanStruct*>(preview->record)->Value;
    if (previewOn) setAutoPreview(false);
    RunStatus status = drawEach(lineEdit, lines);
    {
        CrashContext during("in the plug-in's LineEdit callback");
        PluginConsole console(session_.quiet());
        selectEntry(lineEdit, entryOf(lineEdit, kNoAction));
    }
    if (previewOn) setAutoPreview(true);
    session_.relayMessages();
    if (status.ok()) status = checkAllocations("in the plug-in's LineEdit callback");
    return status;
}

RunStatus ViewerActions::drawEach(const Control& lineEdit, const LinesFile& lines) {
    const int noAction = entryOf(lineEdit, kNoAction);
    const int addLine = entryOf(lineEdit, kAddLine);
    const SparkInfoStruct info = session_.viewerInfo(frame_, totalFrames_);
    const int height = session_.height();
    simhost::ViewerPointer pointer(session_.plugin(), info, kViewerScale);
    for (size_t l = 0; l < lines.lines.size(); ++l) {
        const std::string where = "in the plug-in's SparkInteract, drawing line " +
                                  std::to_string(l + 1) + " of the lines file";
        {
            CrashContext during(where);
            PluginConsole console(session_.quiet());
            selectEntry(lineEdit, noAction);  // away and back: a new line
            selectEntry(lineEdit, addLine);
            for (const LinePoint& point : lines.lines[l])
                pointer.click(static_cast<float>(point.x),
                              static_cast<float>(height - 1 - point.y));
        }
        session_.relayMessages();
        const RunStatus status = checkAllocations(where);
        if (!status.ok()) return status;
        ++linesDrawn_;
        if (lines.lines[l].size() >= kFittedPoints) ++linesWithAFit_;
        if (constrains(lines.lines[l], height)) ++linesThatConstrain_;
    }
    return RunStatus::success();
}

RunStatus ViewerActions::autoFind(std::string* fitted) {
    const ControlNames& controls = session_.controls();
    const Control& button = *controls.named(kAutoFind, ControlKind::Button);
    // Known before pressing: the search would step until its counters ran out.
    if (linesWithAFit_ > 0 && linesThatConstrain_ == 0)
        return RunStatus::failure(ExitCode::Usage,
                                  std::string("AutoFind refused: ") + kUnconstrained +
                                      ": every line of three points or more has its inner "
                                      "points on its ends");
    {
        CrashContext during("in the plug-in's AutoFind callback");
        PluginConsole console(session_.quiet());
        session_.plugin().callback(button.symbol, kCallbackArgument,
                                   session_.viewerInfo(frame_, totalFrames_));
    }
    const std::string message = session_.relayMessages();
    RunStatus status = checkAllocations("in the plug-in's AutoFind callback");
    if (!status.ok()) return status;
    if (!message.empty()) {
        std::string hint;
        if (linesWithAFit_ == 0)
            hint = linesDrawn_ == 0 ? " (--autofind needs lines drawn: give them with --lines)"
                                    : " (a line is fitted only with three points or more)";
        return RunStatus::failure(ExitCode::Usage,
                                  "AutoFind failed: the plug-in said \"" + message + "\"" + hint);
    }
    status = checkFitInRange();
    if (!status.ok()) return status;
    std::string text;
    for (const char* name : {"Radial1", "Radial2"}) {
        if (const Control* control = controls.named(name, ControlKind::Float)) {
            char value[64];
            std::snprintf(
                value, sizeof value, "%s=%.9g ", name,
                static_cast<double>(static_cast<SparkFloatStruct*>(control->record)->Value));
            text += value;
        }
    }
    if (const Control* mode = controls.named(kMode, ControlKind::Menu))
        text += std::string(kMode) + "=" + controls.valueText(*mode);
    *fitted = text;
    return RunStatus::success();
}

// A fit that leaves a control's range would render with values no set-up
// can hold (a set-up refuses them when loaded): the lines did not constrain it.
RunStatus ViewerActions::checkFitInRange() const {
    for (const char* name : kFitted) {
        const Control* control = session_.controls().named(name, ControlKind::Float);
        if (!control) continue;
        const auto* record = static_cast<const SparkFloatStruct*>(control->record);
        if (record->Value >= record->Min && record->Value <= record->Max) continue;
        char text[160];
        std::snprintf(text, sizeof text, "AutoFind's fit left %s at %g, outside its range %g .. %g",
                      name, static_cast<double>(record->Value), static_cast<double>(record->Min),
                      static_cast<double>(record->Max));
        return RunStatus::failure(ExitCode::Usage, std::string(text) + ": " + kUnconstrained +
                                                       "; no frame or set-up is written");
    }
    return RunStatus::success();
}

RunStatus ViewerActions::writeOverlay(const FilePixels& picture, const std::string& path) {
    const simhost::ViewerImage background = viewerBackground(picture);
    simhost::ViewerImage drawn;
    std::string error;
    bool rendered;
    {
        CrashContext during("in the plug-in's SparkOverlay");
        PluginConsole console(session_.quiet());
        rendered = simhost::Viewer(kViewerScale)
                       .render(session_.plugin(), session_.viewerInfo(frame_, totalFrames_), drawn,
                               &error, &background);
    }
    session_.relayMessages();
    const RunStatus status = checkAllocations("in the plug-in's SparkOverlay");
    if (!status.ok()) return status;
    if (!rendered)
        return RunStatus::failure(ExitCode::Output,
                                  "cannot draw the overlay for " + path + ": " + error);
    return writeImage(path, drawn.width, drawn.height,
                      viewerSamples(drawn, outputSampleType(path, kHostDepth8)), picture.dateTime,
                      picture.origin);
}
