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

// A menu whose changes the plug-in hears even when the default handling is
// switched off for it; a disabled one it does not hear.
unsigned long* menuHeard(ControlZel& menu, PluginCallback callback, int arg,
                         const SparkInfoStruct& info) {
    return guardedCallback([&]() -> unsigned long* {
        menu.Sync();
        if (!menu.isDisabled()) (Instance.*callback)(menu, frameOf(info));
        if (!menu.continueToDefault) return nullptr;
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

// One callback per lens field and button of the control list.
#define STRAIGHTLUX_FLOAT(Name, N, member)                    \
    unsigned long* dlcb_##N(int arg, SparkInfoStruct info) {  \
        return valueChanged(Instance.info.member, arg, info); \
    }
#define STRAIGHTLUX_POSITION(Name, NX, NY, member)            \
    unsigned long* dlcb_##NX(int arg, SparkInfoStruct info) { \
        return valueChanged(Instance.info.member, arg, info); \
    }
#define STRAIGHTLUX_MENU(Name, N, member)                    \
    unsigned long* dlcb_##N(int arg, SparkInfoStruct info) { \
        return menuChanged(Instance.info.member, arg, info); \
    }
#define STRAIGHTLUX_MENU_HEARD(Name, N, member, pluginCallback)                          \
    unsigned long* dlcb_##N(int arg, SparkInfoStruct info) {                             \
        return menuHeard(Instance.info.member, &Straightlux::pluginCallback, arg, info); \
    }
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)                                  \
    unsigned long* dlcb_##N(int arg, SparkInfoStruct info) {                                 \
        return buttonPressed(Instance.info.member, &Straightlux::pluginCallback, arg, info); \
    }
#include "StraightluxControls.def"

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
