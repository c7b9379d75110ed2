// Line widget: pick the midpoint, re-centre on the pointer, write both ends.
#include "LineOverlayZel.h"

namespace {
constexpr double kPercent = 100.0;
}

void LineOverlayZel::HandleInteraction(InterType type, float px, float py) {
    handleCommon(type, px, py);
}

int LineOverlayZel::handleAt(float px, float py) const {
    return hits(handleX, handleY, px, py) ? 1 : 0;
}

void LineOverlayZel::drag(float px, float py) {
    float w, h;
    if (!frameSize(w, h)) return;
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
    clampPercent(x1, startX);
    clampPercent(y1, startY);
    // Quirk kept: both tests of x2 against its range store the clamped
    // value into x1, so x2 itself stays unclamped.
    if (endX.value) {
        if (endX.max && x2 * kPercent > *endX.max) x1 = static_cast<float>(*endX.max / kPercent);
        if (endX.min && *endX.min > x2 * kPercent) x1 = static_cast<float>(*endX.min / kPercent);
    }
    clampPercent(y2, endY);
    writePercent(x1, startX, startNumber);
    writePercent(y1, startY, startNumber + 1);
    writePercent(x2, endX, endNumber);
    writePercent(y2, endY, endNumber + 1);
}
