#include "SparkControlRecords.h"

#include "SparkText.h"

extern "C" {

SparkPupStruct SparkPup33 = {
    0,
    9,
    nullptr,
    {sparkText("FULL"), sparkText("1/2"), sparkText("1/3"), sparkText("1/4"), sparkText("1/6"),
     sparkText("1/8"), sparkText("1/12"), sparkText("1/16"), sparkText("1/32")},
};

SparkFloatStruct SparkFloat27 = {0.0f, 0.0f, 100.0f, 0.1f, 0, sparkText("Blend: %.2f"), nullptr};

}  // extern "C"
