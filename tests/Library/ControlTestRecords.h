// Stand-ins for the host's field records in the control tests, with the
// members the controls touch and views of them; and the fake host.
#pragma once

#include "ControlFields.h"
#include "FakeHost.h"

// Stand-ins for the host's field records, with the members the controls touch.
struct FloatRecord {
    float Value = 0.0f, Min = 0.0f, Max = 0.0f;
    ZelFloatField field() { return ZelFloatField{&Value, &Min, &Max}; }
};
struct IntRecord {
    int Value = 0, Min = 0, Max = 0;
    ZelIntField field() { return ZelIntField{&Value, &Min, &Max}; }
};
struct PupRecord {
    int Value = 0;
    int TitleCount = 0;
    ZelListField field() { return ZelListField{&Value, &TitleCount}; }
};
struct BoolRecord {
    char Value = 0;
};
struct StringRecord {
    char Value[200] = {};
    ZelTextField field() { return ZelTextField{Value, static_cast<int>(sizeof Value)}; }
};
struct ColorRecord {
    unsigned long Color = 0;
};

inline FloatRecord floatRecord(float value, float min, float max) {
    FloatRecord record;
    record.Value = value;
    record.Min = min;
    record.Max = max;
    return record;
}
