#include "AngleControlZel.h"

void AngleControlZel::bind(int number, ZelFloatField field, ZelAuxFloatRange* saved) {
    bindNumber(number);
    field_ = field;
    saved_ = saved;
    saveRange(field_, saved_);
}

void AngleControlZel::Sync() {
    if (field_.value != nullptr) value = *field_.value;
}

void AngleControlZel::SetValue(double /*time*/, double degrees) {
    if (field_.value == nullptr) return;
    *field_.value = static_cast<float>(degrees);
    updateField(number_);
    Sync();
}
