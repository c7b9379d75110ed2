#include "PositionControlZel.h"

namespace {
constexpr double kPercent = 100.0;  // host field = fraction * 100
constexpr int kYOffset = 1;         // the y field's number after the x field's

bool complete(const ZelFloatField& field) {
    return field.value != nullptr && field.min != nullptr && field.max != nullptr;
}

void collapseRange(const ZelFloatField& field) {
    if (!complete(field)) return;
    *field.min = *field.value;
    *field.max = *field.value;
}

void restoreRange(const ZelFloatField& field, float min, float max) {
    if (!complete(field)) return;
    *field.min = min;
    *field.max = max;
}
}  // namespace

void PositionControlZel::bind(int number, ZelFloatField xField, ZelFloatField yField,
                              ZelAuxPositionRange* saved) {
    bindNumber(number);
    xField_ = xField;
    yField_ = yField;
    saved_ = saved;
    if (saved_ == nullptr) return;
    if (complete(xField_)) {
        saved_->xMin = *xField_.min;
        saved_->xMax = *xField_.max;
    }
    if (complete(yField_)) {
        saved_->yMin = *yField_.min;
        saved_->yMax = *yField_.max;
    }
}

// Greyed out by collapsing both ranges onto their values; enabling restores
// the ranges saved at binding.
void PositionControlZel::greyOut(bool disabled) {
    if (disabled) {
        collapseRange(xField_);
        collapseRange(yField_);
    } else if (saved_ != nullptr) {
        restoreRange(xField_, saved_->xMin, saved_->xMax);
        restoreRange(yField_, saved_->yMin, saved_->yMax);
    }
    updateField(number_);
    updateField(number_ + kYOffset);
}

void PositionControlZel::showFields(bool hidden) {
    showField(number_, hidden);
    showField(number_ + kYOffset, hidden);
}

void PositionControlZel::SetValue(double /*time*/, double newX, double newY) {
    if (xField_.value == nullptr || yField_.value == nullptr) return;
    *xField_.value = static_cast<float>(newX * kPercent);
    *yField_.value = static_cast<float>(newY * kPercent);
    updateField(number_);
    updateField(number_ + kYOffset);
    Sync();
}

// The cache already holds fractions, yet the cached path divides by 100 once
// more (field / 10000), as Size does: a known quirk, kept.
void PositionControlZel::GetValue(double time, double& outX, double& outY) const {
    if (usesCache(time)) {
        outX = x / kPercent;
        outY = y / kPercent;
        return;
    }
    outX = curveValue(number_, time) / kPercent;
    outY = curveValue(number_ + kYOffset, time) / kPercent;
}
