// The callbacks of the value fields, the buttons and the common fields, and
// the default handling they hand over to.
#include "ControlCallbacks.h"

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
    return !control.IsDisabled() && control.continueToDefault;
}

// Float fields and the centre: the control takes the new host value.
unsigned long* valueChanged(ControlZel& control, int arg, const SparkInfoStruct& info) {
    control.Sync();
    if (continuesToDefault(control)) return DefaultCB(arg, info);
    return nullptr;
}

// Menus may change what the plug-in shows, so its controls are re-synced too.
unsigned long* menuChanged(ControlZel& control, int arg, const SparkInfoStruct& info) {
    control.Sync();
    if (continuesToDefault(control)) {
        Instance.SyncControls();
        return DefaultCB(arg, info);
    }
    return nullptr;
}

// A disabled button does nothing, but the viewer is still refreshed.
unsigned long* buttonPressed(ControlZel& button, PluginCallback callback, int arg,
                             const SparkInfoStruct& info) {
    if (!button.IsDisabled()) (Instance.*callback)(button, frameOf(info));
    if (button.continueToDefault) return DefaultCB(arg, info);
    return nullptr;
}

}  // namespace

unsigned long* DefaultCB(int arg, SparkInfoStruct info) {
    if (SparkBoolean34.Value != 0 && arg == kEndOfChange) return SparkProcess(info);
    sparkViewingDraw();
    return nullptr;
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
    ListControlZel& lineEdit = Instance.info.lineEdit;
    lineEdit.Sync();
    if (!lineEdit.IsDisabled()) Instance.LineEditCB(lineEdit, frameOf(info));
    if (lineEdit.continueToDefault) {
        Instance.SyncControls();
        return DefaultCB(arg, info);
    }
    return nullptr;
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
    sparkViewingDraw();
    if (info.Mode == kModuleMode && arg == kEndOfChange) {
        sparkControlUpdate(kBlendControl);
        return DefaultCB(kEndOfChange, info);
    }
    return nullptr;
}

// A new proxy factor re-renders at once, whatever "Auto Preview" says.
unsigned long* SetRes1CB(int, SparkInfoStruct info) {
    sparkControlUpdate(kProxyControl);
    return SparkProcess(info);
}

unsigned long* Auto1CB(int arg, SparkInfoStruct info) {
    sparkControlUpdate(kAutoPreviewControl);
    return DefaultCB(arg, info);
}

unsigned long* Overlay1CB(int arg, SparkInfoStruct info) {
    sparkControlUpdate(kClearOverlayControl);
    return OverlayCB(arg, info);
}

unsigned long* OverlayCB(int, SparkInfoStruct) {
    sparkViewingDraw();
    return nullptr;
}
