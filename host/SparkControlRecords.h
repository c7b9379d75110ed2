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

// One record per line of the control list (StraightluxControls.def), named
// Spark<Kind><number>: SparkFloat6 ("Radial1"), SparkPup17 ("Sampling"), ...
extern "C" {
#define STRAIGHTLUX_RECORD(Name, Kind, N, callback) \
    extern SPARK_EXPORT Spark##Kind##Struct Spark##Kind##N;
#include "StraightluxControls.def"
}
