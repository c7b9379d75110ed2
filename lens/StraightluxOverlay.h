// The lens plug-in's viewer overlay: what Straightlux::RenderOverlay draws
// and where Straightlux::HandleInteraction sends a pointer event. The
// plug-in keeps one StraightluxOverlayParts for its lifetime (a member built
// after the members it names), since the line pen points back at it between
// events.
//
// Units: drawing and events are in overlay units (frame units, origin at the
// lower left, the surface's frame width and height); the centre, the pen and
// the lines are fractions of the frame; the error points are already in
// overlay units and are drawn as they stand. Colours are 16-bit.
#pragma once

#include <cstdint>

#include "InterType.h"
#include "tagDPT.h"

class CrosshairOverlayZel;
class OverlayZel;
class PolyLine2DZel;
class PolyLineSet2DZel;
class StraightluxLinePenOverlayZel;

// The plug-in's members that the overlay reads and edits.
struct StraightluxOverlayParts {
    OverlayZel& surface;                // the plug-in's own OverlayZel part
    CrosshairOverlayZel& crosshair;     // the distortion centre
    StraightluxLinePenOverlayZel& pen;  // the line pen
    const double& centreX;              // the "Centre" control's cached x, y
    const double& centreY;
    float& penX;  // last pointer position over the viewer
    float& penY;
    bool& newLine;                // the next "Add Line" click starts a line
    const int32_t& lastLineEdit;  // "LineEdit" as of its last callback
    PolyLineSet2DZel*& lines;
    PolyLine2DZel*& currentLine;
    tagDPT2* const& errorPoints;  // the optimiser's marked points
    const int32_t& errorPointCount;
};

// Straightlux::RenderOverlay: the centre crosshair ("LineEdit: No Action") or
// the pen cursor, every line with its points (newest first), the rubber band
// while adding, and the error points in red.
void renderStraightluxOverlay(StraightluxOverlayParts& parts);
// Straightlux::HandleInteraction: the event goes to the crosshair with
// "LineEdit: No Action", otherwise to the line pen.
void handleStraightluxInteraction(StraightluxOverlayParts& parts, InterType type, float x, float y);
