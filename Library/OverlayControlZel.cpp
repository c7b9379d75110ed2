// Widget base: the hit test, the shared event rules and the percent fields.
#include "OverlayControlZel.h"

#include "OverlayZel.h"
#include "ZelHost.h"

namespace {
constexpr double kPercent = 100.0;
}

bool OverlayControlZel::hits(float hx, float hy, float x, float y) const {
    if (!surface) return false;
    // A square test with strict bounds: a pointer exactly r away misses.
    const float r = surface->GrabHandleSize();
    return hx - r < x && x < hx + r && hy - r < y && y < hy + r;
}

bool OverlayControlZel::frameSize(float& w, float& h) const {
    if (!surface || surface->frameWidth <= 0 || surface->frameHeight <= 0) return false;
    w = static_cast<float>(surface->frameWidth);
    h = static_cast<float>(surface->frameHeight);
    return true;
}

void OverlayControlZel::handleCommon(InterType type, float x, float y) {
    switch (type) {
        case INTER_PRESS:
            selected = highlighted = handleAt(x, y);
            HandleInteractionPlat(type, x, y);
            break;
        case INTER_MOVE:
            highlighted = handleAt(x, y);
            HandleInteractionPlat(type, x, y);
            break;
        case INTER_DRAG:
            if (selected) drag(x, y);
            HandleInteractionPlat(type, x, y);
            break;
        case INTER_RELEASE:
            HandleInteractionPlat(type, x, y);
            selected = 0;
            break;
        default:
            break;
    }
}

void OverlayControlZel::clampPercent(float& v, const ZelFloatField& field) {
    if (!field.value) return;
    if (field.max && v * kPercent > *field.max) v = static_cast<float>(*field.max / kPercent);
    if (field.min && *field.min > v * kPercent) v = static_cast<float>(*field.min / kPercent);
}

void OverlayControlZel::writePercent(float v, const ZelFloatField& field, int control) {
    if (!field.value) return;
    *field.value = static_cast<float>(v * kPercent);
    zelControlUpdate(control);
}
