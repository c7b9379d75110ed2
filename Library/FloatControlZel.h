// FloatControlZel: one animatable float field, held unconverted (the plug-in
// and the host use the same units). Bound to the field's record view and a
// ZelAuxFloatRange that keeps the field's range while it is greyed out.
#pragma once

#include "ControlZel.h"

class FloatControlZel : public ControlZel {
  public:
    FloatControlZel() = default;

    void Sync() override;
    void Hide(bool hidden) override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the field's current range into saved.
    void bind(int number, ZelFloatField field, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, double newValue);
    void GetValue(double time, double& out) const;
    // The host binding's per-frame copy of the host value.
    void setCached(double newValue) { value = newValue; }

    double value = 0.0;  // as of the last Sync

  private:
    void greyOut(bool disabled) override { greyFloatField(disabled, field_, saved_); }

    ZelFloatField field_;
    ZelAuxFloatRange* saved_ = nullptr;
};
