#include "IntegerControlZel.h"

void IntegerControlZel::bind(int number, ZelIntField field, ZelAuxFloatRange* saved) {
    bindNumber(number);
    field_ = field;
    saved_ = saved;
    if (saved_ != nullptr && field_.min != nullptr && field_.max != nullptr) {
        saved_->min = static_cast<float>(*field_.min);
        saved_->max = static_cast<float>(*field_.max);
    }
}

void IntegerControlZel::Sync() {
    if (field_.value != nullptr) value = *field_.value;
}

// Greyed out by collapsing the range onto the value; enabling restores the
// range saved at binding.
void IntegerControlZel::greyOut(bool disabled) {
    if (field_.value != nullptr && field_.min != nullptr && field_.max != nullptr) {
        if (disabled) {
            *field_.min = *field_.value;
            *field_.max = *field_.value;
        } else if (saved_ != nullptr) {
            *field_.min = static_cast<int>(saved_->min);
            *field_.max = static_cast<int>(saved_->max);
        }
    }
    updateField(number_);
}

void IntegerControlZel::SetValue(double /*time*/, long newValue) {
    if (field_.value == nullptr) return;
    *field_.value = static_cast<int>(newValue);
    updateField(number_);
    Sync();
}

void IntegerControlZel::GetValue(double time, long& out) const {
    out = usesCache(time) ? value : static_cast<long>(curveValue(number_, time));
}
