#include "ControlZel.h"

#include <cstring>

void ControlZel::Bind(int number, void* primary, void* second, void* third) {
    number_ = number;
    primary_ = primary;
    second_ = second;
    third_ = third;
    spareFlag = 0;
    continueToDefault = 1;
}

void ControlZel::Disable(bool disabled) { disabled_ = disabled; }

void ControlZel::Hide(bool hidden) { hidden_ = hidden; }

float ControlZel::CurveValue(int number, double time) {
    return sparkGetCurveValuef(SPARK_UI_CONTROL, number, static_cast<float>(time));
}

void ControlZel::UpdateField(int number) { sparkControlUpdate(number); }

void ControlZel::ShowField(int number, bool hidden) {
    if (hidden) {
        sparkDisableParameter(SPARK_UI_CONTROL, number);
    } else {
        sparkEnableParameter(SPARK_UI_CONTROL, number);
    }
}

void ControlZel::BindFloatField(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved) {
    Bind(number, record, saved);
    if (record != nullptr && saved != nullptr) {
        saved->min = record->Min;
        saved->max = record->Max;
    }
}

// A numeric field is greyed out by collapsing its range onto its value, so the
// user cannot drag it; enabling brings back the range saved at binding.
void ControlZel::DisableFloatField(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    auto* record = static_cast<SparkFloatStruct*>(primary_);
    auto* saved = static_cast<ZelAuxFloatRange*>(second_);
    if (record != nullptr) {
        if (disabled) {
            record->Min = record->Value;
            record->Max = record->Value;
        } else if (saved != nullptr) {
            record->Min = saved->min;
            record->Max = saved->max;
        }
    }
    UpdateField(number_);
    disabled_ = disabled;
}

void ControlZel::CopyText(char* destination, const char* source) {
    if (destination == nullptr || source == nullptr) return;
    std::strncpy(destination, source, kZelTextCapacity - 1);
    destination[kZelTextCapacity - 1] = '\0';
}
