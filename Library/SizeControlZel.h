// SizeControlZel: a size as a fraction of the frame; the host field shows it
// as a percentage (field = fraction * 100). Bound to the field's record view
// and a ZelAuxFloatRange that keeps the field's range while it is greyed out.
#pragma once

#include "ControlZel.h"

class SizeControlZel : public ControlZel {
  public:
    SizeControlZel() = default;

    void Sync() override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves the field's current range into saved.
    void bind(int number, ZelFloatField field, ZelAuxFloatRange* saved);

    // Writes the host record straight away (no curve key); the time is ignored.
    void SetValue(double time, double fraction);
    void GetValue(double time, double& out) const;
    void setCached(double fraction) { value = fraction; }

    double value = 0.0;  // fraction, as of the last Sync

  private:
    void greyOut(bool disabled) override { greyFloatField(disabled, field_, saved_); }

    ZelFloatField field_;
    ZelAuxFloatRange* saved_ = nullptr;
};
