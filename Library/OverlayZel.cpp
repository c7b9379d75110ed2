// Overlay drawing primitives: every line goes through DrawLine, one begin/end
// pair per primitive, in frame units.
#include "OverlayZel.h"

#include <cmath>

#include "HersheySimplex.h"
#include "ZelDrawing.h"

namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kRadiansPerDegree = kPi / 180.0;
}  // namespace

void OverlayZel::SetColour(int r, int g, int b, int a) {
    (void)a;
    const double full = kFullChannel;
    zelDrawColour(static_cast<float>(r / full), static_cast<float>(g / full),
                  static_cast<float>(b / full));
}

void OverlayZel::DrawPixel(float x, float y) {
    zelDrawBegin(kZelPoints);
    zelDrawVertex(x, y);
    zelDrawEnd();
}

void OverlayZel::DrawLine(float x1, float y1, float x2, float y2) {
    zelDrawBegin(kZelLines);
    zelDrawVertex(x1, y1);
    zelDrawVertex(x2, y2);
    zelDrawEnd();
}

void OverlayZel::DrawHandle(float x, float y, bool selected) {
    (void)selected;
    const float s = kHandleSide / zoom;
    const float h = GrabHandleSize();
    zelDrawBegin(kZelPolygon);
    zelDrawVertex(x - h, y - h);
    zelDrawVertex(x - h + s, y - h);
    zelDrawVertex(x - h + s, y - h + s);
    zelDrawVertex(x - h, y - h + s);
    zelDrawEnd();
}

float OverlayZel::GrabHandleSize() const { return 0.5f * kHandleSide / zoom; }

void OverlayZel::DrawLineDotted(float x1, float y1, float x2, float y2, int dash) {
    if (dash <= 0) return;
    const float dx = x2 - x1;
    const float dy = y2 - y1;
    const float count = std::sqrt(dx * dx + dy * dy) / static_cast<float>(dash);
    // NaN and infinite ends would never finish the walk.
    if (!(count > 0.0f) || !std::isfinite(count)) return;
    const float stepX = dx / count;
    const float stepY = dy / count;
    float px = x1;
    float py = y1;
    // Even steps are the gaps, so the line starts with a gap: kept so.
    for (int i = 0; static_cast<float>(i) < count; ++i) {
        if (i % 2 == 1) {
            float ex = px + stepX;
            float ey = py + stepY;
            if ((dx > 0.0f && ex > x2) || (dx < 0.0f && ex < x2)) ex = x2;
            if ((dy > 0.0f && ey > y2) || (dy < 0.0f && ey < y2)) ey = y2;
            DrawLine(px, py, ex, ey);
        }
        px += stepX;
        py += stepY;
    }
}

void OverlayZel::DrawEllipse(float cx, float cy, float width, float height, float angle, int dotted,
                             int dash, float startAngle, float endAngle) {
    if (width < 5.0f || height < 5.0f || dash <= 0) return;
    if (!std::isfinite(startAngle) || !std::isfinite(endAngle)) return;
    // About one segment per dash along the circumference, at least ten a turn.
    double step = 360.0 / (kPi * width / dash);
    if (step > kEllipseMaxStepDegrees) step = kEllipseMaxStepDegrees;
    if (!(step > 0.0)) return;
    const double rx = width / 2.0;
    const double ry = height / 2.0;
    const double r = angle * kRadiansPerDegree;
    const double cosR = std::cos(r);
    const double sinR = std::sin(r);

    float firstX = 0.0f, firstY = 0.0f, prevX = 0.0f, prevY = 0.0f;
    for (int k = 0;; ++k) {
        const double a = startAngle + k * step;
        if (a > endAngle) break;
        const double ex = rx * std::cos(a * kRadiansPerDegree);
        const double ey = ry * std::sin(a * kRadiansPerDegree);
        const float px = static_cast<float>(cx + ex * cosR - ey * sinR);
        const float py = static_cast<float>(cy + ex * sinR + ey * cosR);
        if (k == 0) {
            firstX = prevX = px;
            firstY = prevY = py;
        }
        if (!dotted || k % 2 == 1) DrawLine(px, py, prevX, prevY);
        prevX = px;
        prevY = py;
    }
    if (startAngle == 0.0f && endAngle == 360.0f) DrawLine(firstX, firstY, prevX, prevY);
}

void OverlayZel::DrawRectangle(float cx, float cy, float width, float height, float angle,
                               int dotted, int dash) {
    const float q = aspect();
    // Rotate in a square-pixel frame, then stretch y back by the aspect.
    const double a = width / 2.0;
    const double b = height / q / 2.0;
    const double r = angle * kRadiansPerDegree;
    const double cosR = std::cos(r);
    const double sinR = std::sin(r);
    const double local[4][2] = {{a, b}, {a, -b}, {-a, -b}, {-a, b}};
    float x[4], y[4];
    for (int i = 0; i < 4; ++i) {
        x[i] = static_cast<float>(cx + (local[i][0] * cosR - local[i][1] * sinR));
        y[i] = static_cast<float>(cy + (local[i][0] * sinR + local[i][1] * cosR) * q);
    }
    for (int i = 0; i < 4; ++i) {
        const int j = (i + 1) % 4;
        if (dotted) {
            DrawLineDotted(x[i], y[i], x[j], y[j], dash);
        } else {
            DrawLine(x[i], y[i], x[j], y[j]);
        }
    }
}

void OverlayZel::DrawCrosshair(float x, float y, int diagonals) {
    const float i = kCrosshairInner / zoom;
    const float o = kCrosshairOuter / zoom;
    DrawLine(x + i, y, x + o, y);
    DrawLine(x - i, y, x - o, y);
    DrawLine(x, y + i, x, y + o);
    DrawLine(x, y - i, x, y - o);
    if (diagonals) {
        const float hi = i / 2.0f;
        const float ho = o / 2.0f;
        DrawLine(x + hi, y + hi, x + ho, y + ho);
        DrawLine(x - hi, y + hi, x - ho, y + ho);
        DrawLine(x + hi, y - hi, x + ho, y - ho);
        DrawLine(x - hi, y - hi, x - ho, y - ho);
    }
}

void OverlayZel::DrawArrow(float x1, float y1, float x2, float y2) {
    const double base = std::atan2(std::fabs(y2 - y1), std::fabs(x2 - x1)) / kRadiansPerDegree;
    // t: direction from the head toward (x2, y2), by quadrant.
    double t;
    if (x1 > x2 && y2 >= y1) {
        t = 180.0 - base;
    } else if (x1 >= x2 && y1 > y2) {
        t = 180.0 + base;
    } else {
        t = base;
        if (x2 > x1 && y1 > y2) t = 360.0 - base;
    }
    const double len = kArrowBarb / zoom;
    const double left = (t + kArrowSpreadDegrees) * kRadiansPerDegree;
    const double right = (t - kArrowSpreadDegrees) * kRadiansPerDegree;
    DrawLine(x1, y1, static_cast<float>(x1 + len * std::cos(left)),
             static_cast<float>(y1 + len * std::sin(left)));
    DrawLine(x1, y1, static_cast<float>(x1 + len * std::cos(right)),
             static_cast<float>(y1 + len * std::sin(right)));
}

float OverlayZel::DrawText(float x, float y, const char* text, float scaleX, float scaleY,
                           int draw) {
    int cursor = 0;
    if (!text) return 0.0f;
    for (const char* c = text; *c; ++c) {
        const int glyph = static_cast<signed char>(*c) - kHersheyFirstChar;
        if (glyph < 0 || glyph >= kHersheyGlyphCount) continue;
        const int* row = kHersheySimplex[glyph];
        const int vertices = row[0];
        if (draw) {
            // x is placed in frame units, y in screen units (divided as a
            // whole by the zoom): kept so, callers pass y accordingly.
            auto mapX = [&](int vx) { return x + (cursor + vx) * scaleX / zoom; };
            auto mapY = [&](int vy) { return (y + vy * scaleY) / zoom; };
            for (int v = 0; v + 1 < vertices; ++v) {
                const int* a = row + 2 + 2 * v;
                const int* b = a + 2;
                const bool aUp = a[0] == kHersheyPenUp && a[1] == kHersheyPenUp;
                const bool bUp = b[0] == kHersheyPenUp && b[1] == kHersheyPenUp;
                if (aUp || bUp) continue;
                DrawLine(mapX(a[0]), mapY(a[1]), mapX(b[0]), mapY(b[1]));
            }
        }
        cursor += row[1];
    }
    return cursor * scaleX;
}
