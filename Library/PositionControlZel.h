// PositionControlZel: a point as fractions of the frame, shown by the host as
// two percentage fields, x at the control's number and y at number + 1
// (field = fraction * 100). Bound to the x and y record views and a
// ZelAuxPositionRange that keeps both ranges while the fields are greyed out.
// Sync leaves the cache alone: the host binding fills x and y every frame.
#pragma once

#include "ControlZel.h"

class PositionControlZel : public ControlZel {
  public:
    PositionControlZel() = default;

    void Sync() override {}
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves both fields' current ranges into saved.
    void bind(int number, ZelFloatField xField, ZelFloatField yField, ZelAuxPositionRange* saved);

    // Writes both host records straight away (no curve keys); the time is ignored.
    void SetValue(double time, double newX, double newY);
    void GetValue(double time, double& outX, double& outY) const;
    void setCached(double newX, double newY) {
        x = newX;
        y = newY;
    }

    double x = 0.0;  // fraction of the frame width
    double y = 0.0;  // fraction of the frame height

  private:
    void greyOut(bool disabled) override;
    void showFields(bool hidden) override;

    ZelFloatField xField_;
    ZelFloatField yField_;
    ZelAuxPositionRange* saved_ = nullptr;
};
