// Drawing of the overlay widgets: each sets its colour, draws from its
// geometry in frame fractions and stores where its handles went in frame
// units, so that the next hit test uses what is on screen.
#include <algorithm>
#include <cmath>

#include "AngleOverlayZel.h"
#include "CircleOverlayZel.h"
#include "CrosshairOverlayZel.h"
#include "LineOverlayZel.h"
#include "OverlayZel.h"
#include "RectangleOverlayZel.h"

namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kRadiansPerDegree = kPi / 180.0;
constexpr int kCircleDash = 4;

void useColour(OverlayZel& surface, const OverlayControlZel& widget) {
    surface.SetColour(widget.colour[0], widget.colour[1], widget.colour[2], widget.colour[3]);
}

// The free end of an angle widget: R = radius * W along the angle, y stretched by q.
void angleEnd(const OverlayZel& surface, const AngleOverlayZel& widget, float q, float& x,
              float& y) {
    const float w = static_cast<float>(surface.frameWidth);
    const double r = widget.radius * w;
    const double a = widget.angle * kRadiansPerDegree;
    x = static_cast<float>(w * widget.pivotX + r * std::cos(a));
    y = static_cast<float>(surface.frameHeight * widget.pivotY + r * std::sin(a) * q);
}
}  // namespace

void OverlayZel::DrawCrosshairOverlay(CrosshairOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    const float x = frameWidth * widget->x;
    const float y = frameHeight * widget->y;
    DrawCrosshair(x, y, widget->diagonals);
    DrawHandle(x, y, widget->selected != 0);
    widget->handleX = x;
    widget->handleY = y;
}

void OverlayZel::DrawLineOverlay(LineOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    const float ax = frameWidth * widget->x1;
    const float ay = frameHeight * widget->y1;
    const float bx = frameWidth * widget->x2;
    const float by = frameHeight * widget->y2;
    DrawLine(ax, ay, bx, by);
    const float mx = std::min(ax, bx) + std::fabs(bx - ax) / 2.0f;
    const float my = std::min(ay, by) + std::fabs(by - ay) / 2.0f;
    DrawHandle(mx, my, widget->selected != 0);
    widget->handleX = mx;
    widget->handleY = my;
}

void OverlayZel::DrawAngleOverlay(AngleOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    float ex, ey;
    angleEnd(*this, *widget, aspect(), ex, ey);
    DrawLine(frameWidth * widget->pivotX, frameHeight * widget->pivotY, ex, ey);
    DrawHandle(ex, ey, widget->selected != 0);
    widget->handleX = ex;
    widget->handleY = ey;
}

void OverlayZel::DrawPointyAngleOverlay(AngleOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    float ex, ey;
    angleEnd(*this, *widget, aspect(), ex, ey);
    const float px = frameWidth * widget->pivotX;
    const float py = frameHeight * widget->pivotY;
    DrawCrosshair(px, py, 1);
    DrawLine(px, py, ex, ey);
    // Head at the end, pointing away from the pivot; no handle square.
    DrawArrow(ex, ey, px, py);
    widget->handleX = ex;
    widget->handleY = ey;
}

void OverlayZel::DrawCircleOverlay(CircleOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    const float w = static_cast<float>(frameWidth);
    const float cx = w * widget->centreX;
    const float cy = frameHeight * widget->centreY;
    const float width = widget->width * w;
    const float height = widget->height * w;  // both sizes are fractions of W
    DrawEllipse(cx, cy, width, height, widget->rotation, widget->dotted, kCircleDash, 0.0f, 360.0f);
    // Handles 1, 2, 3 at ellipse angles -45, 0 and -90 degrees, placed like
    // the ellipse's own points.
    const double at[3] = {-kPi / 4.0, 0.0, -kPi / 2.0};
    const double r = widget->rotation * kRadiansPerDegree;
    for (int i = 0; i < 3; ++i) {
        const double ex = width / 2.0 * std::cos(at[i]);
        const double ey = height / 2.0 * std::sin(at[i]);
        widget->handleX[i] = static_cast<float>(cx + ex * std::cos(r) - ey * std::sin(r));
        widget->handleY[i] = static_cast<float>(cy + ex * std::sin(r) + ey * std::cos(r));
        const int handle = i + 1;
        if (widget->locked && handle != 2) continue;
        DrawHandle(widget->handleX[i], widget->handleY[i], widget->selected == handle);
    }
}

void OverlayZel::DrawRectangleOverlay(RectangleOverlayZel* widget) {
    if (!widget) return;
    useColour(*this, *widget);
    const float w = static_cast<float>(frameWidth);
    const float cx = w * widget->centreX;
    const float cy = frameHeight * widget->centreY;
    const float width = w * widget->width;
    const float height = widget->drawnHeight(w, static_cast<float>(frameHeight));
    DrawRectangle(cx, cy, width, height, widget->angle, 0, 0);
    // Handle places in the rectangle's own frame, placed as its corners are.
    const float q = aspect();
    const double a = width / 2.0;
    const double b = height / q / 2.0;
    const double local[3][2] = {{a, b}, {a, 0.0}, {0.0, b}};
    const double r = widget->angle * kRadiansPerDegree;
    const int handles = widget->square ? 2 : 3;
    for (int i = 0; i < 3; ++i) {
        const double lx = local[i][0];
        const double ly = local[i][1];
        widget->handleX[i] = static_cast<float>(cx + (lx * std::cos(r) - ly * std::sin(r)));
        widget->handleY[i] = static_cast<float>(cy + (lx * std::sin(r) + ly * std::cos(r)) * q);
        if (i < handles) {
            DrawHandle(widget->handleX[i], widget->handleY[i], widget->selected == i + 1);
        }
    }
}
