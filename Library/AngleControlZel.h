// AngleControlZel: an angle field in degrees, stored unconverted in its
// SparkFloatStruct; a ZelAuxFloatRange keeps the range while it is greyed
// out. There is no GetValue: the plug-in reads `value` after Sync.
#pragma once

#include "ControlZel.h"

class AngleControlZel : public ControlZel {
  public:
    AngleControlZel() = default;

    void Sync() override;
    void Disable(bool disabled) override;
    void Hide(bool hidden) override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the record's current Min/Max into saved.
    using ControlZel::Bind;
    void Bind(int number, SparkFloatStruct* record, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, double degrees);
    void SetCached(double degrees) { value = degrees; }

    double value = 0.0;  // degrees, as of the last Sync

  private:
    SparkFloatStruct* record() const { return static_cast<SparkFloatStruct*>(primary_); }
};
