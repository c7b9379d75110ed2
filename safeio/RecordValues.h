// RecordValues: the values a control record accepts. One set of rules for a
// value a user types and one read from a set-up file, so that neither lets
// through what the other refuses.
//
//   float fields: a whole decimal number (blanks around it allowed) whose
//       float is finite (no NaN, no infinity, nothing beyond a float's range)
//       and, when the record's Min < Max, within Min .. Max as a float;
//   integer fields: a whole decimal number within int, and within Min .. Max
//       when Min < Max;
//   colours: an unsigned number (decimal, 0x hex or 0 octal), no sign.
// Menus (an entry index, or an entry's text), check boxes and text fields
// are checked by their callers, which know the form the value takes there.
#pragma once

#include <string>

namespace safeio {

enum class ValueCheck { Fine, Malformed, NotFinite, OutOfRange };

// "-1 .. 3": a record's range as messages show it.
std::string rangeText(double min, double max);

ValueCheck checkFloatText(const std::string& text, float min, float max, float* value);
ValueCheck checkIntText(const std::string& text, int min, int max, int* value);
ValueCheck checkColourText(const std::string& text, unsigned long* value);

}  // namespace safeio
