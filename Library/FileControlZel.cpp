#include "FileControlZel.h"

#include <cctype>

void FileControlZel::Bind(int number, SparkStringStruct* record) {
    ControlZel::Bind(number, record != nullptr ? record->Value : nullptr);
}

// Before the first GetValue there is no cached buffer to copy into.
void FileControlZel::Sync() {
    if (value != nullptr && value != buffer()) CopyText(value, buffer());
}

void FileControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    UpdateField(number_);
    disabled_ = disabled;
}

void FileControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
    ShowField(number_ + kZelFileTextFieldOffset, hidden);
}

void FileControlZel::SetValue(double /*time*/, char* text) {
    if (buffer() == nullptr) return;
    if (text != buffer()) CopyText(buffer(), text);
    UpdateField(number_ + kZelFileTextFieldOffset);
    Sync();
}

// Blanks anywhere in a typed file name are dropped, and the host's buffer is
// rewritten with the compacted name.
void FileControlZel::GetValue(double /*time*/, char*& out) {
    char* name = buffer();
    if (name != nullptr) {
        char* kept = name;
        for (const char* c = name; *c != '\0'; ++c) {
            if (!std::isspace(static_cast<unsigned char>(*c))) *kept++ = *c;
        }
        *kept = '\0';
    }
    value = name;
    out = value;
}
