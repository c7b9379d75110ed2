// "Reset" on the common page (control 32): after the user confirms, every
// lens field goes back to its default, each shown and synced in page order.
#include "ControlCallbacks.h"
#include "EntryGuard.h"
#include "PluginInstance.h"
#include "SparkText.h"

namespace {

constexpr const char* kResetQuestion =
    "Are you sure you want to reset the current settings to default values?";

// Every lens field in page order (the control list's); the blend, the proxy
// selector and the two check boxes keep their values, deliberately: they are
// viewing choices, not lens settings.
constexpr Straightlux::LensField kPageOrder[] = {
#define STRAIGHTLUX_FLOAT(Name, N, member) Straightlux::LensField::k##Name,
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) Straightlux::LensField::k##Name,
#define STRAIGHTLUX_MENU(Name, N, member) Straightlux::LensField::k##Name,
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
};

}  // namespace

unsigned long* Reset1CB(int arg, SparkInfoStruct info) {
    return guardedCallback([&] {
        if (sparkMessageConfirm(sparkText(kResetQuestion))) {
            // Only the fields: the model and the drawn lines follow at the next frame.
            Instance.resetLens(kPageOrder, Straightlux::ResetScope::kFieldsOnly);
            StraightluxInfo& controls = Instance.info;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback) controls.member.Sync();
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback)
#include "StraightluxControls.def"
            Instance.SyncControls();
        }
        return DefaultCB(arg, info);
    });
}
