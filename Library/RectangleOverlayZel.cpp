// Rectangle widget: pick a corner or side handle, resize, write the sizes.
#include "RectangleOverlayZel.h"

#include <algorithm>
#include <cmath>

#include "OverlayZel.h"

namespace {
constexpr double kPi = 3.14159265358979323846;
}

void RectangleOverlayZel::HandleInteraction(InterType type, float x, float y) {
    if (type == INTER_MOVE) {
        if (handleAt(x, y)) HandleInteractionPlat(type, x, y);
        return;
    }
    handleCommon(type, x, y);
}

int RectangleOverlayZel::handleAt(float px, float py) const {
    const int handles = square ? 2 : 3;
    for (int handle = 1; handle <= handles; ++handle) {
        if (hits(handleX[handle - 1], handleY[handle - 1], px, py)) return handle;
    }
    return 0;
}

void RectangleOverlayZel::drag(float x, float y) {
    float w, h;
    if (!frameSize(w, h)) return;
    const double q = surface->aspectNumerator / surface->aspectDenominator;
    const double dx = x - w * centreX;
    const double dy = y - h * centreY;
    // The pointer's offset in the rectangle's own frame (turned by -angle,
    // y unstretched for the turn): u along the width, v along the height.
    const double a = -angle * kPi / 180.0;
    const double u = std::cos(a) * dx - std::sin(a) * (dy / q);
    const double v = std::sin(a) * (dx * q) + std::cos(a) * dy;
    const double reach = std::sqrt(u * u + v * v);
    switch (selected) {
        case 1:
            if (square) {
                width = static_cast<float>(2.0 * std::max(std::fabs(u), std::fabs(v)) / w);
            } else {
                width = static_cast<float>(2.0 * std::fabs(u) / w);
                height = static_cast<float>(2.0 * std::fabs(v) / h);
            }
            break;
        case 2:
            width = static_cast<float>(2.0 * reach / w);
            break;
        case 3:
            height = static_cast<float>(2.0 * reach / h);
            break;
        default:
            break;
    }
}

void RectangleOverlayZel::HandleInteractionPlat(InterType type, float, float) {
    if (type != INTER_DRAG || !selected) return;
    clampPercent(width, widthField);
    clampPercent(height, heightField);
    const bool writesWidth = selected == 1 || selected == 2;
    const bool writesHeight = !square && (selected == 1 || selected == 3);
    if (writesWidth) writePercent(width, widthField, number);
    if (writesHeight) writePercent(height, heightField, number + 1);
}
