// The control records the plug-in exports to the host: each is found by its
// symbol name, which carries the record kind and the host control number.
// Every record is made from its description in the control table
// (StraightluxControlTable.h): menu values are 0-based host indices, float
// values are in host units (percentages where the plug-in works in
// fractions), titles keep their trailing blanks.
#pragma once

#include "SparkApi.h"
#include "SparkExport.h"
#include "StraightluxControlTable.h"

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
extern SPARK_EXPORT SparkPushStruct SparkPush32;        // "Reset": every lens field
extern SPARK_EXPORT SparkPupStruct SparkPup33;          // proxy resolution
extern SPARK_EXPORT SparkBooleanStruct SparkBoolean34;  // "Auto Preview"
// "Import AIFF" page: a user channel loaded from an amplitude file.
extern SPARK_EXPORT SparkUserFloatStruct SparkUserFloat93;
extern SPARK_EXPORT SparkPushStruct SparkPush114;
}
