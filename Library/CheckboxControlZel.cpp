#include "CheckboxControlZel.h"

void CheckboxControlZel::Bind(int number, SparkBooleanStruct* record, ZelExclusionGroup* group) {
    ControlZel::Bind(number, record != nullptr ? &record->Value : nullptr, nullptr, group);
}

void CheckboxControlZel::Sync() {
    if (valueByte() != nullptr) value = *valueByte() != 0;
}

// A check box cannot be greyed out; the field is only refreshed. The host byte
// is saved on every call, even when the state does not change.
void CheckboxControlZel::Disable(bool disabled) {
    if (valueByte() != nullptr) savedByDisable_ = *valueByte();
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    UpdateField(number_);
    disabled_ = disabled;
}

void CheckboxControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void CheckboxControlZel::SetValue(double /*time*/, long newValue) {
    if (valueByte() == nullptr) return;
    *valueByte() = static_cast<char>(newValue);
    UpdateField(number_);
    Sync();
    // Only exactly 1 switches the group off; other non-zero values leave it.
    if (newValue != 1 || group() == nullptr) return;
    for (int i = 0; i < group()->count; ++i) {
        if (group()->values[i] != nullptr) *group()->values[i] = 0;
        UpdateField(group()->numbers[i]);
    }
}

void CheckboxControlZel::GetValue(double /*time*/, long& out) const { out = value ? 1 : 0; }
