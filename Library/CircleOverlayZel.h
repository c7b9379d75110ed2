// CircleOverlayZel: an ellipse about a centre, its width and height both
// fractions of the frame width W, turned by `rotation` degrees. Three
// handles on the curve: 1 at -45 degrees (scales both sizes, ratio kept),
// 2 at 0 degrees (width) and 3 at -90 degrees (height); a locked circle
// offers only handle 2. The host shows the width at control n and the height
// at control m, as percentages of W.
#pragma once

#include "OverlayControlZel.h"

class CircleOverlayZel : public OverlayControlZel {
  public:
    CircleOverlayZel() = default;

    void bind(int widthControl, const ZelFloatField& widthRecord, int heightControl,
              const ZelFloatField& heightRecord) {
        widthNumber = widthControl, widthField = widthRecord;
        heightNumber = heightControl, heightField = heightRecord;
    }

    void HandleInteraction(InterType type, float x, float y) override;
    // On every drag, handle or not: clamps width and height to their fields'
    // ranges, then writes what the selected handle changes.
    void HandleInteractionPlat(InterType type, float x, float y) override;

    int widthNumber = 0;
    ZelFloatField widthField;
    int heightNumber = 0;
    ZelFloatField heightField;

    float centreX = 0.0f;   // fraction of W
    float centreY = 0.0f;   // fraction of H
    float width = 0.0f;     // fraction of W
    float height = 0.0f;    // fraction of W as well
    float rotation = 0.0f;  // degrees
    int32_t locked = 0;
    int32_t dotted = 0;
    float handleX[3] = {0.0f, 0.0f, 0.0f};  // handles 1..3 as last drawn, frame units
    float handleY[3] = {0.0f, 0.0f, 0.0f};

  protected:
    int handleAt(float px, float py) const override;
    void drag(float px, float py) override;
};
