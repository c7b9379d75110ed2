#include "IntegerControlZel.h"

void IntegerControlZel::Bind(int number, SparkIntStruct* record, ZelAuxFloatRange* saved) {
    ControlZel::Bind(number, record, saved);
    if (record != nullptr && saved != nullptr) {
        saved->min = static_cast<float>(record->Min);
        saved->max = static_cast<float>(record->Max);
    }
}

void IntegerControlZel::Sync() {
    if (record() != nullptr) value = record()->Value;
}

// Greyed out by collapsing the range onto the value; enabling restores the
// range saved at binding.
void IntegerControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    auto* saved = static_cast<ZelAuxFloatRange*>(second_);
    if (record() != nullptr) {
        if (disabled) {
            record()->Min = record()->Value;
            record()->Max = record()->Value;
        } else if (saved != nullptr) {
            record()->Min = static_cast<int>(saved->min);
            record()->Max = static_cast<int>(saved->max);
        }
    }
    UpdateField(number_);
    disabled_ = disabled;
}

void IntegerControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void IntegerControlZel::SetValue(double /*time*/, long newValue) {
    if (record() == nullptr) return;
    record()->Value = static_cast<int>(newValue);
    UpdateField(number_);
    Sync();
}

void IntegerControlZel::GetValue(double time, long& out) const {
    out = UsesCache(time) ? value : static_cast<long>(CurveValue(number_, time));
}
