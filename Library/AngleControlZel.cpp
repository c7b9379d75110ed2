#include "AngleControlZel.h"

void AngleControlZel::Bind(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved) {
    BindFloatField(number, record, saved);
}

void AngleControlZel::Sync() {
    if (record() != nullptr) value = record()->Value;
}

void AngleControlZel::Disable(bool disabled) { DisableFloatField(disabled); }

void AngleControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void AngleControlZel::SetValue(double /*time*/, double degrees) {
    if (record() == nullptr) return;
    record()->Value = static_cast<float>(degrees);
    UpdateField(number_);
    Sync();
}
