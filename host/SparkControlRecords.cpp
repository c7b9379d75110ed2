#include "SparkControlRecords.h"

#include "AmplitudeImport.h"
#include "ControlCallbacks.h"
#include "HelpTopic.h"
#include "SparkText.h"

namespace {

constexpr unsigned int kNoFlags = 0;
constexpr int kSamplingEntries = 5;
constexpr int kLineEditEntries = 6;
constexpr int kModeEntries = 3;
constexpr int kViewEntries = 2;
constexpr int kProxyEntries = 9;

}  // namespace

extern "C" {

SparkFloatStruct SparkFloat6 = {
    kRadialDefault, -1.0f, 3.0f, 0.001f, kNoFlags, sparkText("Radial1: %.3f"), dlcb_6};
SparkFloatStruct SparkFloat7 = {
    kRadialDefault, -1.0f, 3.0f, 0.001f, kNoFlags, sparkText("Radial2: %.3f"), dlcb_7};
SparkFloatStruct SparkFloat8 = {
    kCurvatureDefault, -1.0f, 1.0f, 0.001f, kNoFlags, sparkText("XCurvature: %.3f"), dlcb_8};
SparkFloatStruct SparkFloat9 = {
    kCurvatureDefault, -1.0f, 1.0f, 0.001f, kNoFlags, sparkText("YCurvature: %.3f"), dlcb_9};
SparkFloatStruct SparkFloat13 = {
    kCentreDefault, 0.0f, 100.0f, 0.05f, kNoFlags, sparkText("Centre X: %.2f"), dlcb_13};
// Shares dlcb_13 with Centre X, deliberately: both fields are one position.
SparkFloatStruct SparkFloat14 = {
    kCentreDefault, 0.0f, 100.0f, 0.05f, kNoFlags, sparkText("Centre Y: %.2f"), dlcb_13};
SparkFloatStruct SparkFloat16 = {
    kSqueezeDefault, 0.5f, 5.0f, 0.001f, kNoFlags, sparkText("Squeeze: %.3f"), dlcb_16};

SparkPupStruct SparkPup17 = {
    kSamplingDefault,
    kSamplingEntries,
    dlcb_17,
    {sparkText("Sampling: Nearest  "), sparkText("Sampling: Linear  "),
     sparkText("Sampling: Cubic  "), sparkText("Sampling: SharpCubic  "),
     sparkText("Sampling: BSpline  ")},
};

SparkFloatStruct SparkFloat18 = {
    kMagnifyDefault, 0.2f, 5.0f, 0.001f, kNoFlags, sparkText("Magnify: %.3f"), dlcb_18};

SparkPupStruct SparkPup20 = {
    kLineEditDefault,
    kLineEditEntries,
    dlcb_20,
    {sparkText("LineEdit: No Action  "), sparkText("LineEdit: Add Line  "),
     sparkText("LineEdit: Delete Line  "), sparkText("LineEdit: Move Point  "),
     sparkText("LineEdit: Delete Point  "), sparkText("LineEdit: Insert Point  ")},
};

SparkPushStruct SparkPush21 = {sparkText("KillLines   "), dlcb_21};
SparkPushStruct SparkPush22 = {sparkText("AutoFind   "), dlcb_22};

SparkPupStruct SparkPup23 = {
    kModeDefault,
    kModeEntries,
    dlcb_23,
    {sparkText("Mode: Remove  "), sparkText("Mode: Add  "), sparkText("Mode: Auto Remove  ")},
};

SparkPupStruct SparkPup24 = {
    kViewDefault,
    kViewEntries,
    dlcb_24,
    {sparkText("View: Result  "), sparkText("View: Input  ")},
};

SparkPushStruct SparkPush27 = {sparkText("Reset   "), dlcb_27};

SparkFloatStruct SparkFloat27 = {0.0f,    0.0f, 100.0f, 0.1f, kNoFlags, sparkText("Blend: %.2f"),
                                 Blend1CB};

SparkBooleanStruct SparkBoolean28 = {0, sparkText("Clear Overlay"), Overlay1CB};

SparkPushStruct SparkPush31 = {sparkText("Help"), HelpCB};
SparkPushStruct SparkPush32 = {sparkText("Reset"), Reset1CB};

SparkPupStruct SparkPup33 = {
    0,
    kProxyEntries,
    SetRes1CB,
    {sparkText("FULL"), sparkText("1/2"), sparkText("1/3"), sparkText("1/4"), sparkText("1/6"),
     sparkText("1/8"), sparkText("1/12"), sparkText("1/16"), sparkText("1/32")},
};

SparkBooleanStruct SparkBoolean34 = {1, sparkText("Auto Preview"), Auto1CB};

// A channel-editor channel with no control object and no callback.
SparkUserFloatStruct SparkUserFloat93 = {
    0.0f, -1000.0f, 1000.0f, 0.001f, kNoFlags, sparkText("Amplitude Import: %.1f"), nullptr, 0};

SparkPushStruct SparkPush114 = {sparkText("Import Amplitude File"), import_aiff_CB};

}  // extern "C"
