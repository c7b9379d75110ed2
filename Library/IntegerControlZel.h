// IntegerControlZel: a whole-number field. Bound to the field's record view
// and a ZelAuxFloatRange (two floats) that keeps the field's range while it is
// greyed out. Curve values read from the host are truncated toward zero.
#pragma once

#include <cstdint>

#include "ControlZel.h"

class IntegerControlZel : public ControlZel {
  public:
    IntegerControlZel() = default;

    void Sync() override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the field's current range into saved.
    void bind(int number, ZelIntField field, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, long newValue);
    void GetValue(double time, long& out) const;
    void setCached(long newValue) { value = static_cast<int32_t>(newValue); }

    int32_t value = 0;  // as of the last Sync

  private:
    void greyOut(bool disabled) override;

    ZelIntField field_;
    ZelAuxFloatRange* saved_ = nullptr;
};
