#include "FloatControlZel.h"

void FloatControlZel::Bind(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved) {
    BindFloatField(number, record, saved);
}

void FloatControlZel::Sync() {
    if (record() != nullptr) value = record()->Value;
}

void FloatControlZel::Disable(bool disabled) { DisableFloatField(disabled); }

// Unlike the other kinds, the host is told before the flag is stored.
void FloatControlZel::Hide(bool hidden) {
    ShowField(number_, hidden);
    hidden_ = hidden;
}

void FloatControlZel::SetValue(double /*time*/, double newValue) {
    if (record() == nullptr) return;
    record()->Value = static_cast<float>(newValue);
    UpdateField(number_);
    Sync();
}

void FloatControlZel::GetValue(double time, double& out) const {
    out = UsesCache(time) ? value : CurveValue(number_, time);
}
