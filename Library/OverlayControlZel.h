// OverlayControlZel: the base of the viewer widgets, on-screen handles that
// edit plug-in parameters by dragging. A widget keeps its geometry in
// fractions of the frame (x of the frame width W, y of the frame height H),
// draws itself through its OverlayZel surface (which also gives W, H, the
// aspect and the zoom), turns pointer events in frame units into geometry
// changes (HandleInteraction) and writes the geometry into the host's fields
// (HandleInteractionPlat), so the setup page and the curves follow.
//
// Host fields hold positions and sizes as percentages (fraction * 100) and
// angles in degrees; a field's range is compared in those units. Handles are
// numbered from 1; 0 means none. Colour channels are 16-bit (0..65535).
#pragma once

#include <cstdint>

#include "ControlFields.h"
#include "InterType.h"

class OverlayZel;

class OverlayControlZel {
  public:
    OverlayControlZel() = default;
    virtual ~OverlayControlZel() = default;

    // Changes the geometry for a pointer event at (x, y), frame units.
    virtual void HandleInteraction(InterType type, float x, float y) {
        (void)type, (void)x, (void)y;
    }
    // Transfers the geometry to the host's fields.
    virtual void HandleInteractionPlat(InterType type, float x, float y) {
        (void)type, (void)x, (void)y;
    }

    void SetColour(int r, int g, int b, int a) {
        colour[0] = r, colour[1] = g, colour[2] = b, colour[3] = a;
    }

    int32_t colour[4] = {65535, 65535, 65535, 65535};  // red, green, blue, alpha
    int32_t selected = 0;                              // handle being dragged
    int32_t highlighted = 0;                           // handle under the pointer
    OverlayZel* surface = nullptr;
    int32_t enabled = 1;  // set at construction; nothing reads it

  protected:
    // Strictly inside the square of half-side GrabHandleSize() about (hx, hy).
    bool hits(float hx, float hy, float x, float y) const;
    // W and H of the surface as floats; false (and nothing to drag against)
    // without a surface or with an empty frame.
    bool frameSize(float& w, float& h) const;

    // The press / move / drag / release rules shared by the crosshair, line,
    // angle and circle; the kind supplies HandleAt and Drag.
    void handleCommon(InterType type, float x, float y);
    // The first handle, in handle order, that (x, y) hits; 0 for none.
    virtual int handleAt(float x, float y) const {
        (void)x, (void)y;
        return 0;
    }
    // Moves the selected handle to (x, y).
    virtual void drag(float x, float y) { (void)x, (void)y; }

    // Lowers v to max / 100 when 100 v is above the field's maximum, then
    // raises it to min / 100 when the minimum is above 100 v (the minimum
    // wins an inverted range). An unbound field leaves v alone.
    static void clampPercent(float& v, const ZelFloatField& field);
    // Writes 100 v to a bound field and tells the host that `control` changed.
    static void writePercent(float v, const ZelFloatField& field, int control);
};
