// OverlayZel: the drawing surface of the host viewer's overlay. Thin wrappers
// over the host's immediate-mode drawing calls (ZelDrawing.h) that draw
// points, lines, grab handles, dotted lines, ellipses, rotated rectangles,
// crosshairs, arrow heads and stroke-font text, and the overlay widgets.
//
// Units: every coordinate is in frame units (overlay units: frame pixels,
// horizontally times the viewer ratio) with the origin at the frame's lower
// left; the viewer entry sets the model-view matrix (its origin, then a
// uniform scale by `zoom`) and the fields below before each redraw. Sizes
// that must stay constant on screen (handles, crosshair arms, arrow barbs)
// are given in screen pixels and divided by `zoom`. Angles are in degrees;
// colour channels are 16-bit (0..65535).
#pragma once

#include <cstdint>

#include "InterType.h"

class AngleOverlayZel;
class CircleOverlayZel;
class CrosshairOverlayZel;
class LineOverlayZel;
class RectangleOverlayZel;

class OverlayZel {
  public:
    virtual ~OverlayZel() = default;

    // Frame a redraw; hooks for subclasses.
    virtual void BeginRender() {}
    virtual void EndRender() {}
    // The plug-in's overlay: drawn on every viewer redraw, and pointer events
    // in overlay units. The viewer entry reaches the plug-in through these.
    virtual void RenderOverlay() {}
    virtual void HandleInteraction(InterType type, float x, float y) {
        (void)type, (void)x, (void)y;
    }

    // 16-bit channels; alpha is ignored.
    void SetColour(int r, int g, int b, int a);
    void DrawPixel(float x, float y);
    void DrawLine(float x1, float y1, float x2, float y2);
    // A filled square 10 screen pixels wide centred on (x, y); `selected`
    // does not change the drawing.
    void DrawHandle(float x, float y, bool selected);
    // Half a handle's side: the widgets' pick radius.
    float GrabHandleSize() const;
    // Dashes and gaps each `dash` long, starting with a gap; a dash of 0 or
    // less, or a line with a NaN or infinite end, draws nothing.
    void DrawLineDotted(float x1, float y1, float x2, float y2, int dash);
    // An ellipse or elliptic arc from startAngle to endAngle; with `dotted`,
    // every other segment. Nothing below 5 units across, with a dash of 0 or
    // less, or with an infinite angle.
    void DrawEllipse(float cx, float cy, float width, float height, float angle, int dotted,
                     int dash, float startAngle, float endAngle);
    // A rectangle rotated by `angle`, its height stretched by the aspect.
    void DrawRectangle(float cx, float cy, float width, float height, float angle, int dotted,
                       int dash);
    // Four arms from 10 to 25 screen pixels, and the diagonals if asked.
    void DrawCrosshair(float x, float y, int diagonals);
    // The two barbs of an arrow head at (x1, y1), pointing away from (x2, y2).
    void DrawArrow(float x1, float y1, float x2, float y2);
    // Strokes text in the Hershey simplex font; returns its advance
    // (cursor * scaleX, not divided by zoom), also when `draw` is 0.
    float DrawText(float x, float y, const char* text, float scaleX, float scaleY, int draw);

    // Widgets: each sets its colour, draws, and stores where its handles went.
    void DrawCrosshairOverlay(CrosshairOverlayZel* widget);
    void DrawLineOverlay(LineOverlayZel* widget);
    void DrawAngleOverlay(AngleOverlayZel* widget);
    void DrawPointyAngleOverlay(AngleOverlayZel* widget);
    void DrawCircleOverlay(CircleOverlayZel* widget);
    void DrawRectangleOverlay(RectangleOverlayZel* widget);

    int32_t frameWidth = 0;  // overlay units
    int32_t frameHeight = 0;
    float aspectNumerator = 1.0f;  // numerator / denominator: vertical stretch
    float aspectDenominator = 1.0f;
    float zoom = 1.0f;  // viewer scale, screen pixels per overlay unit

    // Screen-pixel sizes of the constant-size marks.
    static constexpr float kHandleSide = 10.0f;
    static constexpr float kCrosshairInner = 10.0f;
    static constexpr float kCrosshairOuter = 25.0f;
    static constexpr float kArrowBarb = 40.0f;
    static constexpr float kArrowSpreadDegrees = 20.0f;
    static constexpr float kEllipseMaxStepDegrees = 36.0f;
    static constexpr float kFullChannel = 65535.0f;

  protected:
    // Vertical stretch numerator / denominator.
    float aspect() const { return aspectNumerator / aspectDenominator; }
};
