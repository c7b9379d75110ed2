// "Reset" on the common page (control 32): after the user confirms, every
// lens field goes back to its default, each shown and synced in page order.
#include "ControlCallbacks.h"
#include "EntryGuard.h"
#include "PluginInstance.h"
#include "SparkText.h"

namespace {

constexpr const char* kResetQuestion =
    "Are you sure you want to reset the current settings to default values?";

// Page order; the blend, the proxy selector and the two check boxes keep
// their values, deliberately: they are viewing choices, not lens settings.
constexpr Straightlux::LensField kPageOrder[] = {
    Straightlux::LensField::kRadial1,    Straightlux::LensField::kRadial2,
    Straightlux::LensField::kXCurvature, Straightlux::LensField::kYCurvature,
    Straightlux::LensField::kCentre,     Straightlux::LensField::kSqueeze,
    Straightlux::LensField::kSampling,   Straightlux::LensField::kMagnify,
    Straightlux::LensField::kLineEdit,   Straightlux::LensField::kMode,
    Straightlux::LensField::kView};

}  // namespace

unsigned long* Reset1CB(int arg, SparkInfoStruct info) {
    return guardedCallback([&] {
        if (sparkMessageConfirm(sparkText(kResetQuestion))) {
            // Only the fields: the model and the drawn lines follow at the next frame.
            Instance.resetLens(kPageOrder, Straightlux::ResetScope::kFieldsOnly);
            StraightluxInfo& controls = Instance.info;
            controls.killLines.Sync();
            controls.autoFind.Sync();
            controls.reset.Sync();
            Instance.SyncControls();
        }
        return DefaultCB(arg, info);
    });
}
