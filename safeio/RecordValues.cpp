// Checking a value's text against a control record.
#include "RecordValues.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace safeio {

namespace {
std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string::npos) return "";
    const size_t last = text.find_last_not_of(" \t\n");
    return text.substr(first, last - first + 1);
}
}  // namespace

std::string rangeText(double min, double max) {
    char text[96];
    std::snprintf(text, sizeof text, "%g .. %g", min, max);
    return text;
}

ValueCheck checkFloatText(const std::string& text, float min, float max, float* value) {
    const std::string clean = trimmed(text);
    if (clean.empty()) return ValueCheck::Malformed;
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(clean.c_str(), &end);
    if (!end || *end) return ValueCheck::Malformed;
    const float single = static_cast<float>(number);
    if (errno == ERANGE || !std::isfinite(number) || !std::isfinite(single))
        return ValueCheck::NotFinite;
    if (min < max && (single < min || single > max)) return ValueCheck::OutOfRange;
    *value = single;
    return ValueCheck::Fine;
}

ValueCheck checkIntText(const std::string& text, int min, int max, int* value) {
    const std::string clean = trimmed(text);
    if (clean.empty()) return ValueCheck::Malformed;
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(clean.c_str(), &end, 10);
    if (errno || !end || *end || number < INT_MIN || number > INT_MAX) return ValueCheck::Malformed;
    if (min < max && (number < min || number > max)) return ValueCheck::OutOfRange;
    *value = static_cast<int>(number);
    return ValueCheck::Fine;
}

ValueCheck checkColourText(const std::string& text, unsigned long* value) {
    const std::string clean = trimmed(text);
    if (clean.empty() || clean[0] == '-' || clean[0] == '+') return ValueCheck::Malformed;
    char* end = nullptr;
    errno = 0;
    const unsigned long number = std::strtoul(clean.c_str(), &end, 0);
    if (errno || !end || *end) return ValueCheck::Malformed;
    *value = number;
    return ValueCheck::Fine;
}

}  // namespace safeio
