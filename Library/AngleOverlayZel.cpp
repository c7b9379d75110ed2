// Angle widget: pick the free end, turn toward the pointer, write the angle.
#include "AngleOverlayZel.h"

#include <cmath>

#include "OverlayZel.h"
#include "ZelHost.h"

namespace {
constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;
}

void AngleOverlayZel::HandleInteraction(InterType type, float px, float py) {
    handleCommon(type, px, py);
}

int AngleOverlayZel::handleAt(float px, float py) const {
    return hits(handleX, handleY, px, py) ? 1 : 0;
}

void AngleOverlayZel::drag(float x, float y) {
    float w, h;
    if (!frameSize(w, h)) return;
    const float px = w * pivotX;
    const float py = h * pivotY;
    // The vertical offset is brought back to square pixels before the angle.
    const double unstretch = surface->aspectDenominator / surface->aspectNumerator;
    const double base =
        std::atan2(std::fabs(y - py) * unstretch, std::fabs(x - px)) * kDegreesPerRadian;
    double a;
    if (px > x && y >= py) {
        a = 180.0 - base;
    } else if (px >= x && py > y) {
        a = 180.0 + base;
    } else if (px < x && y < py) {
        a = 360.0 - base;
    } else {
        a = base;
    }
    angle = static_cast<float>(a);
}

void AngleOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG || !selected || !angleField.value) return;
    if (angleField.max && angle > *angleField.max) angle = *angleField.max;
    if (angleField.min && *angleField.min > angle) angle = *angleField.min;
    *angleField.value = angle;
    zelControlUpdate(number);
}
