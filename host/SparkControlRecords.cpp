#include "SparkControlRecords.h"

#include "AmplitudeImport.h"
#include "ControlCallbacks.h"
#include "HelpTopic.h"
#include "SparkText.h"

namespace {

constexpr unsigned int kNoFlags = 0;

// Each record from its description; constant-initialised, so the host finds
// the records filled in as soon as the library is loaded.
constexpr SparkFloatStruct floatRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkFloatStruct{c.defaultValue,     c.min,   c.max, c.increment, kNoFlags,
                            sparkText(c.title), callback};
}

constexpr SparkUserFloatStruct userFloatRecord(const ControlDescriptor& c,
                                               SparkCallbackFunc callback) {
    return SparkUserFloatStruct{c.defaultValue,     c.min,    c.max, c.increment, kNoFlags,
                                sparkText(c.title), callback, 0};
}

constexpr SparkPupStruct menuRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    SparkPupStruct record{c.defaultIndex, c.entryCount, callback, {}};
    for (int i = 0; i < c.entryCount; ++i) record.Titles[i] = sparkText(c.entries[i]);
    return record;
}

constexpr SparkPushStruct pushRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkPushStruct{sparkText(c.title), callback};
}

constexpr SparkBooleanStruct booleanRecord(const ControlDescriptor& c, SparkCallbackFunc callback) {
    return SparkBooleanStruct{static_cast<char>(c.defaultValue), sparkText(c.title), callback};
}

}  // namespace

extern "C" {

SparkFloatStruct SparkFloat6 = floatRecord(kRadial1Control, dlcb_6);
SparkFloatStruct SparkFloat7 = floatRecord(kRadial2Control, dlcb_7);
SparkFloatStruct SparkFloat8 = floatRecord(kXCurvatureControl, dlcb_8);
SparkFloatStruct SparkFloat9 = floatRecord(kYCurvatureControl, dlcb_9);
SparkFloatStruct SparkFloat13 = floatRecord(kCentreXControl, dlcb_13);
// Shares dlcb_13 with Centre X, deliberately: both fields are one position.
SparkFloatStruct SparkFloat14 = floatRecord(kCentreYControl, dlcb_13);
SparkFloatStruct SparkFloat16 = floatRecord(kSqueezeControl, dlcb_16);
SparkPupStruct SparkPup17 = menuRecord(kSamplingControl, dlcb_17);
SparkFloatStruct SparkFloat18 = floatRecord(kMagnifyControl, dlcb_18);
SparkPupStruct SparkPup20 = menuRecord(kLineEditControl, dlcb_20);
SparkPushStruct SparkPush21 = pushRecord(kKillLinesControl, dlcb_21);
SparkPushStruct SparkPush22 = pushRecord(kAutoFindControl, dlcb_22);
SparkPupStruct SparkPup23 = menuRecord(kModeControl, dlcb_23);
SparkPupStruct SparkPup24 = menuRecord(kViewControl, dlcb_24);
SparkPushStruct SparkPush27 = pushRecord(kResetButtonControl, dlcb_27);
SparkFloatStruct SparkFloat27 = floatRecord(kBlendControl, Blend1CB);
SparkBooleanStruct SparkBoolean28 = booleanRecord(kClearOverlayControl, Overlay1CB);
SparkPushStruct SparkPush31 = pushRecord(kHelpControl, HelpCB);
SparkPushStruct SparkPush32 = pushRecord(kResetAllControl, Reset1CB);
SparkPupStruct SparkPup33 = menuRecord(kProxyControl, SetRes1CB);
SparkBooleanStruct SparkBoolean34 = booleanRecord(kAutoPreviewControl, Auto1CB);
// A channel-editor channel with no control object and no callback.
SparkUserFloatStruct SparkUserFloat93 = userFloatRecord(kAmplitudeControl, nullptr);
SparkPushStruct SparkPush114 = pushRecord(kImportAmplitudeControl, import_aiff_CB);

}  // extern "C"
