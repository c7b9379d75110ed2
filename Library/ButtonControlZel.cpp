#include "ButtonControlZel.h"

// A button cannot be greyed out; the field is only refreshed.
void ButtonControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    updateField(number_);
    disabled_ = disabled;
}

void ButtonControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    showField(number_, hidden);
}
