#include "TextControlZel.h"

void TextControlZel::bind(int number, ZelTextField field) {
    bindNumber(number);
    field_ = field;
}

// Before the first GetValue there is no cached buffer to copy into.
void TextControlZel::Sync() {
    if (value != nullptr && value != field_.text)
        copyText(ZelTextField{value, field_.capacity}, field_.text);
}

void TextControlZel::SetValue(double /*time*/, char* text) {
    if (field_.text == nullptr) return;
    if (text != field_.text) copyText(field_, text);
    updateField(number_);
    Sync();
}

void TextControlZel::GetValue(double /*time*/, char*& out) {
    value = field_.text;
    out = value;
}
