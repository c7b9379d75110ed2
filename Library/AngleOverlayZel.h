// AngleOverlayZel: an angle about a pivot. One handle at the free end, a
// radius (fraction of W) away from the pivot at `angle` degrees, counter-
// clockwise from the x axis, with y stretched by the surface's aspect.
// Dragging the handle turns the angle toward the pointer. The host shows the
// angle in degrees at control n.
#pragma once

#include "OverlayControlZel.h"

class AngleOverlayZel : public OverlayControlZel {
  public:
    AngleOverlayZel() = default;

    void bind(int control, const ZelFloatField& angleRecord) {
        number = control, angleField = angleRecord;
    }

    void HandleInteraction(InterType type, float x, float y) override;
    // On a drag of the handle: clamps the angle to its field's range (in
    // degrees, no percent) and writes it.
    void HandleInteractionPlat(InterType type, float x, float y) override;

    int number = 0;
    ZelFloatField angleField;

    float pivotX = 0.0f;   // fraction of W
    float pivotY = 0.0f;   // fraction of H
    float radius = 0.0f;   // fraction of W
    float angle = 0.0f;    // degrees
    float handleX = 0.0f;  // free end as last drawn, frame units
    float handleY = 0.0f;

  protected:
    int handleAt(float px, float py) const override;
    void drag(float px, float py) override;
};
