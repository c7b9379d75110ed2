// Crosshair widget: pick, drag to the pointer, write x and y.
#include "CrosshairOverlayZel.h"

void CrosshairOverlayZel::HandleInteraction(InterType type, float px, float py) {
    HandleCommon(type, px, py);
}

int CrosshairOverlayZel::HandleAt(float px, float py) const {
    return Hits(handleX, handleY, px, py) ? 1 : 0;
}

void CrosshairOverlayZel::Drag(float px, float py) {
    float w, h;
    if (!FrameSize(w, h)) return;
    x = px / w;
    y = py / h;
}

void CrosshairOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG || !selected) return;
    ClampPercent(x, xField);
    ClampPercent(y, yField);
    WritePercent(x, xField, number);
    WritePercent(y, yField, number + 1);
}
