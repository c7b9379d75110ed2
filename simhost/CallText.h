// Text forms of call arguments for the recorded call list.
//
// Integers print with "%d" (unsigned ones with "%u"), floats and doubles with
// "%g", texts as they stand; a null text prints as "(null)".
#pragma once

#include <string>

namespace simhost {

std::string argText(int value);
std::string argText(unsigned value);
std::string argText(long value);
std::string argText(double value);
std::string argText(const char* text);

}  // namespace simhost
