#include "TextControlZel.h"

void TextControlZel::Bind(int number, SparkStringStruct* record) {
    ControlZel::Bind(number, record != nullptr ? record->Value : nullptr);
}

// Before the first GetValue there is no cached buffer to copy into.
void TextControlZel::Sync() {
    if (value != nullptr && value != buffer()) CopyText(value, buffer());
}

void TextControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void TextControlZel::SetValue(double /*time*/, char* text) {
    if (buffer() == nullptr) return;
    if (text != buffer()) CopyText(buffer(), text);
    UpdateField(number_);
    Sync();
}

void TextControlZel::GetValue(double /*time*/, char*& out) {
    value = buffer();
    out = value;
}
