// Line widget: pick the midpoint, re-centre on the pointer, write both ends.
#include "LineOverlayZel.h"

namespace {
constexpr double kPercent = 100.0;
}

void LineOverlayZel::HandleInteraction(InterType type, float px, float py) {
    HandleCommon(type, px, py);
}

int LineOverlayZel::HandleAt(float px, float py) const {
    return Hits(handleX, handleY, px, py) ? 1 : 0;
}

void LineOverlayZel::Drag(float px, float py) {
    float w, h;
    if (!FrameSize(w, h)) return;
    // The midpoint jumps to the pointer: the grab offset is not kept.
    const float dx = (x1 - x2) / 2.0f;
    const float dy = (y1 - y2) / 2.0f;
    x1 = px / w + dx;
    y1 = py / h + dy;
    x2 = px / w - dx;
    y2 = py / h - dy;
}

void LineOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG || !selected) return;
    ClampPercent(x1, startX);
    ClampPercent(y1, startY);
    // Quirk kept: both tests of x2 against its range store the clamped
    // value into x1, so x2 itself stays unclamped.
    if (endX.value) {
        if (endX.max && x2 * kPercent > *endX.max) x1 = static_cast<float>(*endX.max / kPercent);
        if (endX.min && *endX.min > x2 * kPercent) x1 = static_cast<float>(*endX.min / kPercent);
    }
    ClampPercent(y2, endY);
    WritePercent(x1, startX, startNumber);
    WritePercent(y1, startY, startNumber + 1);
    WritePercent(x2, endX, endNumber);
    WritePercent(y2, endY, endNumber + 1);
}
