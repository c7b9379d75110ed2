#include "ControlZel.h"

#include <cstring>

#include "ZelHost.h"

void ControlZel::bindNumber(int number) {
    number_ = number;
    spareFlag = 0;
    continueToDefault = 1;
}

void ControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) return;
    greyOut(disabled);
    disabled_ = disabled;
}

void ControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    showFields(hidden);
}

float ControlZel::curveValue(int number, double time) { return zelCurveValue(number, time); }

void ControlZel::updateField(int number) { zelControlUpdate(number); }

void ControlZel::showField(int number, bool hidden) { zelShowField(number, hidden); }

void ControlZel::saveRange(const ZelFloatField& field, ZelAuxFloatRange* saved) {
    if (saved == nullptr || field.min == nullptr || field.max == nullptr) return;
    saved->min = *field.min;
    saved->max = *field.max;
}

// A numeric field is greyed out by collapsing its range onto its value, so the
// user cannot drag it; enabling brings back the range saved at binding.
void ControlZel::greyFloatField(bool disabled, const ZelFloatField& field,
                                const ZelAuxFloatRange* saved) {
    if (field.value != nullptr && field.min != nullptr && field.max != nullptr) {
        if (disabled) {
            *field.min = *field.value;
            *field.max = *field.value;
        } else if (saved != nullptr) {
            *field.min = saved->min;
            *field.max = saved->max;
        }
    }
    updateField(number_);
}

void ControlZel::copyText(const ZelTextField& destination, const char* source) {
    if (destination.text == nullptr || source == nullptr || destination.capacity < 1) return;
    std::strncpy(destination.text, source, static_cast<size_t>(destination.capacity) - 1);
    destination.text[destination.capacity - 1] = '\0';
}
