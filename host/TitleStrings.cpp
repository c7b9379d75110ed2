#include "TitleStrings.h"

#include <cstring>

namespace {

constexpr char kLockMark = '*';

// Cuts dst's trailing characters that drop() accepts.
template <class Predicate>
void trimTrailing(char* dst, Predicate drop) {
    size_t length = std::strlen(dst);
    while (length > 0 && drop(dst[length - 1])) --length;
    dst[length] = '\0';
}

}  // namespace

char* strcpy_strip(char* dst, const char* src) {
    std::strcpy(dst, src);
    trimTrailing(dst, [](char c) { return c == ' ' || c == '\n'; });
    return dst;
}

char* strcpy_addlock(char* dst, const char* src) {
    const size_t length = std::strlen(src);
    std::memcpy(dst, src, length);
    dst[length] = kLockMark;
    dst[length + 1] = '\0';
    return dst;
}

char* strcpy_dellock(char* dst, const char* src) {
    std::strcpy(dst, src);
    trimTrailing(dst, [](char c) { return c == kLockMark; });
    return dst;
}
