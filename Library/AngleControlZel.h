// AngleControlZel: an angle field in degrees, stored unconverted in its float
// record; a ZelAuxFloatRange keeps the range while it is greyed out. There is
// no GetValue: the plug-in reads `value` after Sync.
#pragma once

#include "ControlZel.h"

class AngleControlZel : public ControlZel {
  public:
    AngleControlZel() = default;

    void Sync() override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the field's current range into saved.
    void bind(int number, ZelFloatField field, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, double degrees);
    void setCached(double degrees) { value = degrees; }

    double value = 0.0;  // degrees, as of the last Sync

  private:
    void greyOut(bool disabled) override { greyFloatField(disabled, field_, saved_); }

    ZelFloatField field_;
    ZelAuxFloatRange* saved_ = nullptr;
};
