// The control records the plug-in exports to the host: each is found by its
// symbol name, which carries the record kind and the host control number.
// Menu values are 0-based host indices; float values are in host units
// (percentages where the plug-in works in fractions).
#pragma once

#include <spark.h>

#include "SparkExport.h"

extern "C" {
// Proxy resolution selector: FULL, 1/2, 1/3, 1/4, 1/6, 1/8, 1/12, 1/16, 1/32.
extern SPARK_EXPORT SparkPupStruct SparkPup33;
// Blend of the result back towards the input, percent.
extern SPARK_EXPORT SparkFloatStruct SparkFloat27;
}
