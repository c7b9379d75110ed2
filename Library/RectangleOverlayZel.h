// RectangleOverlayZel: a rectangle about a centre, width a fraction of the
// frame width W, height a fraction of the frame height H, turned by `angle`
// degrees (drawn as OverlayZel::DrawRectangle, with the aspect). Handles:
// 1 at the corner (+width/2, +height/2), 2 at the middle of the +width/2
// side, 3 at the middle of the +height/2 side. A square rectangle has no
// handle 3: its height on screen is its width (height = width * W / H), so
// only the width is edited. The host shows the width at control n and the
// height at control n + 1, as percentages.
#pragma once

#include "OverlayControlZel.h"

class RectangleOverlayZel : public OverlayControlZel {
  public:
    RectangleOverlayZel() = default;

    void bind(int control, const ZelFloatField& widthRecord, const ZelFloatField& heightRecord) {
        number = control, widthField = widthRecord, heightField = heightRecord;
    }

    // As the other widgets, except that a move sets no highlight and reaches
    // HandleInteractionPlat only over a handle.
    void HandleInteraction(InterType type, float x, float y) override;
    // On a drag of a handle: clamps width and height to their fields' ranges
    // and writes what the handle changes (square: the width only).
    void HandleInteractionPlat(InterType type, float x, float y) override;

    // The height in frame units that is drawn: H * height, or W * width when square.
    float drawnHeight(float w, float h) const { return square ? w * width : h * height; }

    int number = 0;  // width field; height is number + 1
    ZelFloatField widthField;
    ZelFloatField heightField;

    float centreX = 0.0f;                   // fraction of W
    float centreY = 0.0f;                   // fraction of H
    float width = 0.0f;                     // fraction of W
    float height = 0.0f;                    // fraction of H
    float angle = 0.0f;                     // degrees
    float handleX[3] = {0.0f, 0.0f, 0.0f};  // handles 1..3 as last drawn, frame units
    float handleY[3] = {0.0f, 0.0f, 0.0f};
    int32_t square = 0;

  protected:
    int handleAt(float px, float py) const override;
    void drag(float px, float py) override;
};
