// LineOverlayZel: a two-point widget. One handle at the midpoint; dragging
// it re-centres the line on the pointer with its direction and length kept.
// The host shows the start at controls n, n + 1 and the end at m, m + 1, as
// percentages of the frame.
#pragma once

#include "OverlayControlZel.h"

class LineOverlayZel : public OverlayControlZel {
  public:
    LineOverlayZel() = default;

    void bind(int startControl, const ZelFloatField& startXRecord,
              const ZelFloatField& startYRecord, int endControl, const ZelFloatField& endXRecord,
              const ZelFloatField& endYRecord) {
        startNumber = startControl, startX = startXRecord, startY = startYRecord;
        endNumber = endControl, endX = endXRecord, endY = endYRecord;
    }

    void HandleInteraction(InterType type, float x, float y) override;
    // On a drag of the handle: clamps the four values to their fields'
    // ranges (x2's clamps land in x1) and writes start, then end.
    void HandleInteractionPlat(InterType type, float x, float y) override;

    int startNumber = 0;
    ZelFloatField startX;
    ZelFloatField startY;
    int endNumber = 0;
    ZelFloatField endX;
    ZelFloatField endY;

    float x1 = 0.0f, y1 = 0.0f;  // start, fractions of W and H
    float x2 = 0.0f, y2 = 0.0f;  // end
    float handleX = 0.0f;        // midpoint as last drawn, frame units
    float handleY = 0.0f;

  protected:
    int handleAt(float px, float py) const override;
    void drag(float px, float py) override;
};
