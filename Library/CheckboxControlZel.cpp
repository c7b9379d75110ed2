#include "CheckboxControlZel.h"

void CheckboxControlZel::bind(int number, char* valueByte, ZelExclusionGroup* group) {
    bindNumber(number);
    valueByte_ = valueByte;
    group_ = group;
}

void CheckboxControlZel::Sync() {
    if (valueByte_ != nullptr) value = *valueByte_ != 0;
}

// The host byte is saved on every call, even when the state does not change.
void CheckboxControlZel::Disable(bool disabled) {
    if (valueByte_ != nullptr) savedByDisable_ = *valueByte_;
    ControlZel::Disable(disabled);
}

void CheckboxControlZel::SetValue(double /*time*/, long newValue) {
    if (valueByte_ == nullptr) return;
    *valueByte_ = static_cast<char>(newValue);
    updateField(number_);
    Sync();
    // Only exactly 1 switches the group off; other non-zero values leave it.
    if (newValue != 1 || group_ == nullptr) return;
    for (int i = 0; i < group_->count; ++i) {
        if (group_->values[i] != nullptr) *group_->values[i] = 0;
        updateField(group_->numbers[i]);
    }
}

void CheckboxControlZel::GetValue(double /*time*/, long& out) const { out = value ? 1 : 0; }
