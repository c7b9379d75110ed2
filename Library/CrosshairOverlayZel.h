// CrosshairOverlayZel: a point widget (the distortion centre, for one). One
// handle at the point; dragging it moves the point to the pointer. The host
// shows x at control n and y at control n + 1, as percentages of the frame.
#pragma once

#include "OverlayControlZel.h"

class CrosshairOverlayZel : public OverlayControlZel {
  public:
    CrosshairOverlayZel() = default;

    void bind(int control, const ZelFloatField& xRecord, const ZelFloatField& yRecord) {
        number = control, xField = xRecord, yField = yRecord;
    }

    void HandleInteraction(InterType type, float x, float y) override;
    // On a drag of the handle: clamps x and y to their fields' ranges and
    // writes both (controls n, then n + 1).
    void HandleInteractionPlat(InterType type, float x, float y) override;

    int number = 0;  // x field; y is number + 1
    ZelFloatField xField;
    ZelFloatField yField;

    float x = 0.0f;        // fraction of W
    float y = 0.0f;        // fraction of H
    float handleX = 0.0f;  // handle as last drawn, frame units
    float handleY = 0.0f;
    int32_t diagonals = 0;

  protected:
    int handleAt(float px, float py) const override;
    void drag(float px, float py) override;
};
