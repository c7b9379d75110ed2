// The callbacks of the value fields, the buttons and the common fields, and
// the default handling they hand over to. Each runs behind the entry guard.
#include "ControlCallbacks.h"

#include "EntryGuard.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"
#include "SparkEntryPoints.h"

namespace {

constexpr int kEndOfChange = 1;
// Information-record Mode byte of the host's module level.
constexpr char kModuleMode = 1;

using PluginCallback = void (Straightlux::*)(ControlZel&, double);

double frameOf(const SparkInfoStruct& info) { return static_cast<double>(info.FrameNo); }

bool continuesToDefault(const ControlZel& control) {
    return !control.isDisabled() && control.continueToDefault;
}

unsigned long* defaultHandling(int arg, const SparkInfoStruct& info) {
    if (SparkBoolean34.Value != 0 && arg == kEndOfChange) return SparkProcess(info);
    sparkViewingDraw();
    return nullptr;
}

// Float fields and the centre: the control takes the new host value.
unsigned long* valueChanged(ControlZel& control, int arg, const SparkInfoStruct& info) {
    return guardedCallback([&] {
        control.Sync();
        return continuesToDefault(control) ? defaultHandling(arg, info) : nullptr;
    });
}

// Menus may change what the plug-in shows, so its controls are re-synced too.
unsigned long* menuChanged(ControlZel& control, int arg, const SparkInfoStruct& info) {
    return guardedCallback([&]() -> unsigned long* {
        control.Sync();
        if (!continuesToDefault(control)) return nullptr;
        Instance.SyncControls();
        return defaultHandling(arg, info);
    });
}

// A disabled button does nothing, but the viewer is still refreshed.
unsigned long* buttonPressed(ControlZel& button, PluginCallback callback, int arg,
                             const SparkInfoStruct& info) {
    return guardedCallback([&]() -> unsigned long* {
        if (!button.isDisabled()) (Instance.*callback)(button, frameOf(info));
        return button.continueToDefault ? defaultHandling(arg, info) : nullptr;
    });
}

}  // namespace

unsigned long* DefaultCB(int arg, SparkInfoStruct info) {
    return guardedCallback([&] { return defaultHandling(arg, info); });
}

unsigned long* dlcb_6(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.radial1, arg, info);
}

unsigned long* dlcb_7(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.radial2, arg, info);
}

unsigned long* dlcb_8(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.xCurvature, arg, info);
}

unsigned long* dlcb_9(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.yCurvature, arg, info);
}

unsigned long* dlcb_13(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.centre, arg, info);
}

unsigned long* dlcb_16(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.squeeze, arg, info);
}

unsigned long* dlcb_18(int arg, SparkInfoStruct info) {
    return valueChanged(Instance.info.magnify, arg, info);
}

unsigned long* dlcb_17(int arg, SparkInfoStruct info) {
    return menuChanged(Instance.info.sampling, arg, info);
}

unsigned long* dlcb_23(int arg, SparkInfoStruct info) {
    return menuChanged(Instance.info.mode, arg, info);
}

unsigned long* dlcb_24(int arg, SparkInfoStruct info) {
    return menuChanged(Instance.info.view, arg, info);
}

// The plug-in hears of a new line-edit mode even when the default handling
// is switched off for this control.
unsigned long* dlcb_20(int arg, SparkInfoStruct info) {
    return guardedCallback([&]() -> unsigned long* {
        ListControlZel& lineEdit = Instance.info.lineEdit;
        lineEdit.Sync();
        if (!lineEdit.isDisabled()) Instance.LineEditCB(lineEdit, frameOf(info));
        if (!lineEdit.continueToDefault) return nullptr;
        Instance.SyncControls();
        return defaultHandling(arg, info);
    });
}

unsigned long* dlcb_21(int arg, SparkInfoStruct info) {
    return buttonPressed(Instance.info.killLines, &Straightlux::KillLinesCB, arg, info);
}

unsigned long* dlcb_22(int arg, SparkInfoStruct info) {
    return buttonPressed(Instance.info.autoFind, &Straightlux::AutoCB, arg, info);
}

unsigned long* dlcb_27(int arg, SparkInfoStruct info) {
    return buttonPressed(Instance.info.reset, &Straightlux::ResetCB, arg, info);
}

// While the host is in its module level, the end of a blend change re-renders
// (with "Auto Preview" on); otherwise the viewer is only redrawn.
unsigned long* Blend1CB(int arg, SparkInfoStruct info) {
    return guardedCallback([&]() -> unsigned long* {
        sparkViewingDraw();
        if (info.Mode != kModuleMode || arg != kEndOfChange) return nullptr;
        sparkControlUpdate(kBlendControl.number);
        return defaultHandling(kEndOfChange, info);
    });
}

// A new proxy factor re-renders at once, whatever "Auto Preview" says.
unsigned long* SetRes1CB(int, SparkInfoStruct info) {
    return guardedCallback([&] {
        sparkControlUpdate(kProxyControl.number);
        return SparkProcess(info);
    });
}

unsigned long* Auto1CB(int arg, SparkInfoStruct info) {
    return guardedCallback([&] {
        sparkControlUpdate(kAutoPreviewControl.number);
        return defaultHandling(arg, info);
    });
}

unsigned long* Overlay1CB(int arg, SparkInfoStruct info) {
    return guardedCallback([&] {
        sparkControlUpdate(kClearOverlayControl.number);
        return OverlayCB(arg, info);
    });
}

unsigned long* OverlayCB(int, SparkInfoStruct) {
    return guardedCallback([] {
        sparkViewingDraw();
        return static_cast<unsigned long*>(nullptr);
    });
}
