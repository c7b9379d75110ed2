// Crosshair widget: pick, drag to the pointer, write x and y.
#include "CrosshairOverlayZel.h"

void CrosshairOverlayZel::HandleInteraction(InterType type, float px, float py) {
    handleCommon(type, px, py);
}

int CrosshairOverlayZel::handleAt(float px, float py) const {
    return hits(handleX, handleY, px, py) ? 1 : 0;
}

void CrosshairOverlayZel::drag(float px, float py) {
    float w, h;
    if (!frameSize(w, h)) return;
    x = px / w;
    y = py / h;
}

void CrosshairOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG || !selected) return;
    clampPercent(x, xField);
    clampPercent(y, yField);
    writePercent(x, xField, number);
    writePercent(y, yField, number + 1);
}
