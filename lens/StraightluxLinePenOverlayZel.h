// StraightluxLinePenOverlayZel: the pen that draws and edits the reference
// lines in the viewer, by the plug-in's "LineEdit" mode as of its last
// callback. A click (press, then release) in "Add Line" adds a point at the
// release position; "Move Point" and "Insert Point" drag the point picked at
// the press; "Delete Line" and "Delete Point" act on release, when the
// release is still on a point of the line picked at the press.
//
// Units: events come in overlay units (frame units, origin lower left); the
// pen keeps the pointer as fractions of the surface's frame width and height,
// as the lines hold their points. Picks use a fixed tolerance of 0.01 in
// those fractions. The pen edits the plug-in's lines through `owner`.
#pragma once

#include <cstdint>

#include "OverlayControlZel.h"

struct StraightluxOverlayParts;

class StraightluxLinePenOverlayZel : public OverlayControlZel {
  public:
    static constexpr double kPickTolerance = 0.01;  // fractions of the frame

    StraightluxLinePenOverlayZel() = default;

    // Does nothing without an owner or a surface with a frame.
    void HandleInteraction(InterType type, float x, float y) override;
    // The pen writes no host field.
    void HandleInteractionPlat(InterType, float, float) override {}

    int32_t armed = 0;    // a press started an edit that the release (or drag) completes
    int32_t pressed = 0;  // set by every press
    float penX = 0.0f;    // pointer, fractions of the frame
    float penY = 0.0f;
    float penPixelX = 0.0f;  // the same in overlay units, refreshed by each redraw
    float penPixelY = 0.0f;
    StraightluxOverlayParts* owner = nullptr;  // the plug-in's parts, set by each redraw
};
