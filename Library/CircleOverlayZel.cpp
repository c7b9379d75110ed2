// Circle widget: pick a handle on the curve, resize, write the sizes.
#include "CircleOverlayZel.h"

#include <cmath>

#include "OverlayZel.h"

namespace {
constexpr double kPi = 3.14159265358979323846;
}

void CircleOverlayZel::HandleInteraction(InterType type, float px, float py) {
    handleCommon(type, px, py);
}

int CircleOverlayZel::handleAt(float px, float py) const {
    for (int handle = 1; handle <= 3; ++handle) {
        if (locked && handle != 2) continue;
        if (hits(handleX[handle - 1], handleY[handle - 1], px, py)) return handle;
    }
    return 0;
}

void CircleOverlayZel::drag(float x, float y) {
    float w, h;
    if (!frameSize(w, h)) return;
    const double dx = x - w * centreX;
    const double dy = y - h * centreY;
    const double distance = std::sqrt(dx * dx + dy * dy);
    switch (selected) {
        case 2:
            width = static_cast<float>(2.0 * distance / w);
            break;
        case 3:
            // Divided by W, not H: both sizes are fractions of the width.
            height = static_cast<float>(2.0 * distance / w);
            break;
        case 1: {
            // The handle sits at angle c = -45 degrees of the ellipse; solve
            // its x for the half width f with the ratio k kept.
            const double k = static_cast<double>(height) / width;
            const double t = rotation * kPi / 180.0;
            const double c = -kPi / 4.0;
            const double f = dx / (std::cos(t) * std::cos(c) - std::sin(c) * k * std::sin(t));
            if (!std::isfinite(f)) break;
            width = static_cast<float>(2.0 * f / w);
            height = static_cast<float>(2.0 * k * f / w);
            break;
        }
        default:
            break;
    }
}

void CircleOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG) return;
    clampPercent(width, widthField);
    clampPercent(height, heightField);
    switch (selected) {
        case 1:
            writePercent(width, widthField, widthNumber);
            writePercent(height, heightField, heightNumber);
            break;
        case 2:
            writePercent(width, widthField, widthNumber);
            break;
        case 3:
            writePercent(height, heightField, heightNumber);
            break;
        default:
            break;
    }
}
