#include "FileControlZel.h"

#include <cctype>

void FileControlZel::bind(int number, ZelTextField field) {
    bindNumber(number);
    field_ = field;
}

// Before the first GetValue there is no cached buffer to copy into.
void FileControlZel::Sync() {
    if (value != nullptr && value != field_.text)
        copyText(ZelTextField{value, field_.capacity}, field_.text);
}

void FileControlZel::showFields(bool hidden) {
    showField(number_, hidden);
    showField(number_ + kZelFileTextFieldOffset, hidden);
}

void FileControlZel::SetValue(double /*time*/, char* text) {
    if (field_.text == nullptr) return;
    if (text != field_.text) copyText(field_, text);
    updateField(number_ + kZelFileTextFieldOffset);
    Sync();
}

// Blanks anywhere in a typed file name are dropped, and the host's buffer is
// rewritten with the compacted name.
void FileControlZel::GetValue(double /*time*/, char*& out) {
    char* name = field_.text;
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
