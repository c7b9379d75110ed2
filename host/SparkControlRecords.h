// The control records the plug-in exports to the host: each is found by its
// symbol name, which carries the record kind and the host control number.
// Menu values are 0-based host indices; float values are in host units
// (percentages where the plug-in works in fractions). Titles keep their
// trailing blanks: the host lays the page out with them.
#pragma once

#include <spark.h>

#include "SparkExport.h"

// Host control numbers of the plug-in's fields. Number 27 carries two records:
// the "Reset   " button on the lens page and the "Blend" float.
enum SparkControlNumber {
    kRadial1Control = 6,
    kRadial2Control = 7,
    kXCurvatureControl = 8,
    kYCurvatureControl = 9,
    kCentreXControl = 13,
    kCentreYControl = 14,
    kSqueezeControl = 16,
    kSamplingControl = 17,
    kMagnifyControl = 18,
    kLineEditControl = 20,
    kKillLinesControl = 21,
    kAutoFindControl = 22,
    kModeControl = 23,
    kViewControl = 24,
    kResetButtonControl = 27,
    kBlendControl = 27,
    kClearOverlayControl = 28,
    kHelpControl = 31,
    kResetAllControl = 32,
    kProxyControl = 33,
    kAutoPreviewControl = 34,
    kAmplitudeControl = 93,
    kImportAmplitudeControl = 114,
};

// Defaults of the lens fields in host units; "Reset" puts them back.
constexpr float kRadialDefault = 0.0f;
constexpr float kCurvatureDefault = 0.0f;
constexpr float kCentreDefault = 50.0f;  // percent: the middle of the frame
constexpr float kSqueezeDefault = 1.0f;
constexpr int kSamplingDefault = 3;  // "Sampling: SharpCubic  "
constexpr float kMagnifyDefault = 1.0f;
constexpr int kLineEditDefault = 0;  // "LineEdit: No Action  "
constexpr int kModeDefault = 0;      // "Mode: Remove  "
constexpr int kViewDefault = 0;      // "View: Result  "

extern "C" {
// Lens page: the distortion model.
extern SPARK_EXPORT SparkFloatStruct SparkFloat6;   // "Radial1"
extern SPARK_EXPORT SparkFloatStruct SparkFloat7;   // "Radial2"
extern SPARK_EXPORT SparkFloatStruct SparkFloat8;   // "XCurvature"
extern SPARK_EXPORT SparkFloatStruct SparkFloat9;   // "YCurvature"
extern SPARK_EXPORT SparkFloatStruct SparkFloat13;  // "Centre X", percent of the width
extern SPARK_EXPORT SparkFloatStruct SparkFloat14;  // "Centre Y", percent of the height
extern SPARK_EXPORT SparkFloatStruct SparkFloat16;  // "Squeeze"
extern SPARK_EXPORT SparkPupStruct SparkPup17;      // "Sampling"
extern SPARK_EXPORT SparkFloatStruct SparkFloat18;  // "Magnify"
// Lens page: drawn lines and the fit.
extern SPARK_EXPORT SparkPupStruct SparkPup20;    // "LineEdit"
extern SPARK_EXPORT SparkPushStruct SparkPush21;  // "KillLines"
extern SPARK_EXPORT SparkPushStruct SparkPush22;  // "AutoFind"
extern SPARK_EXPORT SparkPupStruct SparkPup23;    // "Mode"
extern SPARK_EXPORT SparkPupStruct SparkPup24;    // "View"
extern SPARK_EXPORT SparkPushStruct SparkPush27;  // "Reset": the plug-in's own reset
// Common fields.
extern SPARK_EXPORT SparkFloatStruct SparkFloat27;      // "Blend", percent of the input
extern SPARK_EXPORT SparkBooleanStruct SparkBoolean28;  // "Clear Overlay"
extern SPARK_EXPORT SparkPushStruct SparkPush31;        // "Help"
extern SPARK_EXPORT SparkPushStruct SparkPush32;        // "Reset": every lens field, confirmed
// Proxy resolution selector: FULL, 1/2, 1/3, 1/4, 1/6, 1/8, 1/12, 1/16, 1/32.
extern SPARK_EXPORT SparkPupStruct SparkPup33;
extern SPARK_EXPORT SparkBooleanStruct SparkBoolean34;  // "Auto Preview"
// "Import AIFF" page: a user channel loaded from an amplitude file.
extern SPARK_EXPORT SparkUserFloatStruct SparkUserFloat93;
extern SPARK_EXPORT SparkPushStruct SparkPush114;
}
