// PositionControlZel: a point as fractions of the frame, shown by the host as
// two percentage fields, x at the control's number and y at number + 1
// (field = fraction * 100). Bound to the x and y SparkFloatStructs and a
// ZelAuxPositionRange that keeps both ranges while the fields are greyed out.
// Sync leaves the cache alone: the host binding fills x and y every frame.
#pragma once

#include "ControlZel.h"

class PositionControlZel : public ControlZel {
  public:
    PositionControlZel() = default;

    void Sync() override {}
    void Disable(bool disabled) override;
    void Hide(bool hidden) override;
    void ResetKeyframes() override {}   // the host owns the keys
    void EnableKeyframes() override {}  // the host owns the keys

    // Binds and saves both records' current Min/Max into saved.
    using ControlZel::Bind;
    void Bind(int number, SparkFloatStruct* xRecord, SparkFloatStruct* yRecord,
              ZelAuxPositionRange* saved);

    // Writes both host records straight away (no curve keys); the time is ignored.
    void SetValue(double time, double newX, double newY);
    void GetValue(double time, double& outX, double& outY) const;
    void SetCached(double newX, double newY) {
        x = newX;
        y = newY;
    }

    double x = 0.0;  // fraction of the frame width
    double y = 0.0;  // fraction of the frame height

  private:
    SparkFloatStruct* xRecord() const { return static_cast<SparkFloatStruct*>(primary_); }
    SparkFloatStruct* yRecord() const { return static_cast<SparkFloatStruct*>(second_); }
    ZelAuxPositionRange* saved() const { return static_cast<ZelAuxPositionRange*>(third_); }
};
