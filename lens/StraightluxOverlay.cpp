// The lens plug-in's overlay drawing and event routing.
#include "StraightluxOverlay.h"

#include "CrosshairOverlayZel.h"
#include "OverlayZel.h"
#include "PolyLineSet2DZel.h"
#include "StraightluxInfo.h"
#include "StraightluxLinePenOverlayZel.h"

namespace {
constexpr int kFull = 65535;
constexpr float kPenCursorArm = 50.0f;  // overlay units each way

void drawLine(OverlayZel& surface, const PolyLine2DZel& line, float fw, float fh) {
    const int n = line.count;
    if (n <= 0 || !line.points) return;
    auto px = [&](int i) { return static_cast<float>(line.points[i].x * fw); };
    auto py = [&](int i) { return static_cast<float>(line.points[i].y * fh); };
    for (int i = 0; i + 1 < n; ++i) {
        surface.DrawLine(px(i), py(i), px(i + 1), py(i + 1));
        surface.DrawHandle(px(i), py(i), false);
    }
    surface.DrawHandle(px(n - 1), py(n - 1), false);
}
}  // namespace

void renderStraightluxOverlay(StraightluxOverlayParts& parts) {
    OverlayZel& surface = parts.surface;
    const float fw = static_cast<float>(surface.frameWidth);
    const float fh = static_cast<float>(surface.frameHeight);
    surface.BeginRender();
    parts.pen.owner = &parts;

    if (parts.lastLineEdit == kLineEditNoAction) {
        parts.crosshair.x = static_cast<float>(parts.centreX);
        parts.crosshair.y = static_cast<float>(parts.centreY);
        surface.DrawCrosshairOverlay(&parts.crosshair);
    } else {
        surface.SetColour(kFull, kFull, 10000, kFull);
        StraightluxLinePenOverlayZel& pen = parts.pen;
        pen.penX = parts.penX;
        pen.penY = parts.penY;
        pen.penPixelX = pen.penX * fw;
        pen.penPixelY = pen.penY * fh;
        const float x = pen.penPixelX;
        const float y = pen.penPixelY;
        surface.DrawLine(x - kPenCursorArm, y, x + kPenCursorArm, y);
        surface.DrawLine(x, y - kPenCursorArm, x, y + kPenCursorArm);
    }

    if (parts.lines) {
        for (PolyLine2DZel* line = parts.lines->head; line; line = line->next) {
            const bool current = line == parts.currentLine;
            if (current) {
                surface.SetColour(20000, kFull, 10000, kFull);
            } else {
                surface.SetColour(20000, 10000, kFull, kFull);
            }
            drawLine(surface, *line, fw, fh);
            // The rubber band from the last point to the pen while adding.
            if (current && parts.lastLineEdit == kLineEditAddLine && line->count >= 1 &&
                line->points && !parts.newLine) {
                const tagDPT2& last = line->points[line->count - 1];
                surface.SetColour(kFull, kFull, 10000, kFull);
                surface.DrawLine(static_cast<float>(last.x * fw), static_cast<float>(last.y * fh),
                                 parts.penX * fw, parts.penY * fh);
            }
        }
    }

    if (parts.errorPoints && parts.errorPointCount > 0) {
        surface.SetColour(kFull, 0, 0, kFull);
        for (int i = 0; i < parts.errorPointCount; ++i) {
            surface.DrawHandle(static_cast<float>(parts.errorPoints[i].x),
                               static_cast<float>(parts.errorPoints[i].y), false);
        }
    }
    surface.EndRender();
}

void handleStraightluxInteraction(StraightluxOverlayParts& parts, InterType type, float x,
                                  float y) {
    // The pen may see an event before the first redraw.
    parts.pen.owner = &parts;
    if (parts.lastLineEdit == kLineEditNoAction) {
        parts.crosshair.HandleInteraction(type, x, y);
    } else {
        parts.pen.HandleInteraction(type, x, y);
    }
}
