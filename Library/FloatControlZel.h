// FloatControlZel: one animatable float field, held unconverted (the plug-in
// and the host use the same units). Bound to the field's SparkFloatStruct and
// a ZelAuxFloatRange that keeps the field's range while it is greyed out.
#pragma once

#include "ControlZel.h"

class FloatControlZel : public ControlZel {
  public:
    FloatControlZel() = default;

    void Sync() override;
    void Disable(bool disabled) override;
    void Hide(bool hidden) override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the record's current Min/Max into saved.
    using ControlZel::Bind;
    void Bind(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, double newValue);
    void GetValue(double time, double& out) const;
    // The host binding's per-frame copy of the host value.
    void SetCached(double newValue) { value = newValue; }

    double value = 0.0;  // as of the last Sync

  private:
    SparkFloatStruct* record() const { return static_cast<SparkFloatStruct*>(primary_); }
};
