// IntegerControlZel: a whole-number field. Bound to the field's SparkIntStruct
// and a ZelAuxFloatRange (two floats) that keeps the field's range while it is
// greyed out. Curve values read from the host are truncated toward zero.
#pragma once

#include <cstdint>

#include "ControlZel.h"

class IntegerControlZel : public ControlZel {
  public:
    IntegerControlZel() = default;

    void Sync() override;
    void Disable(bool disabled) override;
    void Hide(bool hidden) override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the record's current Min/Max into saved.
    using ControlZel::Bind;
    void Bind(int number, SparkIntStruct* record, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, long newValue);
    void GetValue(double time, long& out) const;
    void SetCached(long newValue) { value = static_cast<int32_t>(newValue); }

    int32_t value = 0;  // as of the last Sync

  private:
    SparkIntStruct* record() const { return static_cast<SparkIntStruct*>(primary_); }
};
