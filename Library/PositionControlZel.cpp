#include "PositionControlZel.h"

namespace {
constexpr double kPercent = 100.0;  // host field = fraction * 100
constexpr int kYOffset = 1;         // the y field's number after the x field's

void collapseRange(SparkFloatStruct* record) {
    if (record == nullptr) return;
    record->Min = record->Value;
    record->Max = record->Value;
}

void restoreRange(SparkFloatStruct* record, float min, float max) {
    if (record == nullptr) return;
    record->Min = min;
    record->Max = max;
}
}  // namespace

void PositionControlZel::Bind(int number, SparkFloatStruct* xRecord, SparkFloatStruct* yRecord,
                              ZelAuxPositionRange* saved) {
    ControlZel::Bind(number, xRecord, yRecord, saved);
    if (saved == nullptr) return;
    if (xRecord != nullptr) {
        saved->xMin = xRecord->Min;
        saved->xMax = xRecord->Max;
    }
    if (yRecord != nullptr) {
        saved->yMin = yRecord->Min;
        saved->yMax = yRecord->Max;
    }
}

// Greyed out by collapsing both ranges onto their values; enabling restores
// the ranges saved at binding.
void PositionControlZel::Disable(bool disabled) {
    if (disabled_ == disabled) {
        disabled_ = disabled;
        return;
    }
    if (disabled) {
        collapseRange(xRecord());
        collapseRange(yRecord());
    } else if (saved() != nullptr) {
        restoreRange(xRecord(), saved()->xMin, saved()->xMax);
        restoreRange(yRecord(), saved()->yMin, saved()->yMax);
    }
    UpdateField(number_);
    UpdateField(number_ + kYOffset);
    disabled_ = disabled;
}

void PositionControlZel::Hide(bool hidden) {
    hidden_ = hidden;
    ShowField(number_, hidden);
    ShowField(number_ + kYOffset, hidden);
}

void PositionControlZel::SetValue(double /*time*/, double newX, double newY) {
    if (xRecord() == nullptr || yRecord() == nullptr) return;
    xRecord()->Value = static_cast<float>(newX * kPercent);
    yRecord()->Value = static_cast<float>(newY * kPercent);
    UpdateField(number_);
    UpdateField(number_ + kYOffset);
    Sync();
}

// The cache already holds fractions, yet the cached path divides by 100 once
// more (field / 10000), as Size does: a known quirk, kept.
void PositionControlZel::GetValue(double time, double& outX, double& outY) const {
    if (UsesCache(time)) {
        outX = x / kPercent;
        outY = y / kPercent;
        return;
    }
    outX = CurveValue(number_, time) / kPercent;
    outY = CurveValue(number_ + kYOffset, time) / kPercent;
}
