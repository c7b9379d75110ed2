#include "FloatControlZel.h"

void FloatControlZel::bind(int number, ZelFloatField field, ZelAuxFloatRange* saved) {
    bindNumber(number);
    field_ = field;
    saved_ = saved;
    saveRange(field_, saved_);
}

void FloatControlZel::Sync() {
    if (field_.value != nullptr) value = *field_.value;
}

// Unlike the other kinds, the host is told before the flag is stored.
void FloatControlZel::Hide(bool hidden) {
    showFields(hidden);
    hidden_ = hidden;
}

void FloatControlZel::SetValue(double /*time*/, double newValue) {
    if (field_.value == nullptr) return;
    *field_.value = static_cast<float>(newValue);
    updateField(number_);
    Sync();
}

void FloatControlZel::GetValue(double time, double& out) const {
    out = usesCache(time) ? value : curveValue(number_, time);
}
