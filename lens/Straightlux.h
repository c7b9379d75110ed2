// Straightlux: the lens-correction plug-in object (one per loaded library, the
// host binding's Instance). Per frame it loads the lens model from its
// controls, rebuilds the per-pixel address map only when something that could
// change it has changed, resamples the input through the map into the output
// and optionally magnifies the result about the frame centre. Its callbacks
// reset the model, clear the drawn lines, follow the line-edit mode and fit
// the radial coefficients to the drawn lines.
//
// Units: the model works in pixels (see StraightluxModel); the controls hold
// fractions of the frame for the centre and 1-based entries for the menus;
// drawn lines are in fractions of the frame; images have 15-bit channels.
#pragma once

#include <cstdint>

#include "OverlayZel.h"
#include "PluginZel.h"
#include "StraightluxInfo.h"
#include "StraightluxModel.h"
#include "StraightluxOverlay.h"
#include "tagDPT.h"

class ControlZel;
class ImageXfmZel;
class ImageZel;
class PolyLine2DZel;
class PolyLineSet2DZel;

// OverlayZel is the second base: the viewer's drawing surface, through which
// RenderOverlay and HandleInteraction reach the plug-in.
class Straightlux : public PluginZel, public OverlayZel, public StraightluxModel {
  public:
    Straightlux();
    // Releases the map, scratch, lines and error points; not xfm (see the definition).
    ~Straightlux() override;
    Straightlux(const Straightlux&) = delete;
    Straightlux& operator=(const Straightlux&) = delete;

    void ProcessFrame() override;
    // The host binding syncs the controls itself; nothing to push back.
    void SyncControls() override {}

    // The viewer overlay: the centre crosshair or the pen cursor, the lines,
    // the rubber band and the fit's error points; pointer events go to the
    // crosshair ("LineEdit: No Action") or to the line pen. Overlay units.
    void RenderOverlay() override;
    void HandleInteraction(InterType type, float x, float y) override;

    // True when the address map must be rebuilt for the current model and size.
    bool ControlsChanged();
    void SaveControlValues();
    // Fills the map for the current model: Remove (add false) through the
    // inverse model, Add through the single-precision forward model.
    void ComputeAddressMap(bool add);
    // The two passes of a frame, each in bands of rows over the host's
    // processors: the map resample of `in` into `to`, and the magnify pass
    // of `from` into `to` about the frame centre.
    void resamplePass(ImageZel& in, ImageZel& to);
    void magnifyPass(ImageZel& from, ImageZel& to);
    // Whether a "Magnify" value runs the magnify pass at all (a dead band about 1).
    static bool magnifies(float magnify);
    // Composes the magnify pass's zoom about the frame centre into `xfm` and
    // inverts it, so that xfm.inverse maps an output pixel to the point of
    // the resampled frame it shows. Also used to compose ST-maps.
    static void composeMagnify(ImageXfmZel& xfm, int32_t frameWidth, int32_t frameHeight,
                               float magnify);

    // The lens fields a reset puts back to their defaults (the control
    // table's): the value fields of the control list, in its order.
    enum class LensField {
#define STRAIGHTLUX_FLOAT(Name, N, member) k##Name,
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) k##Name,
#define STRAIGHTLUX_MENU(Name, N, member) k##Name,
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback)
#include "StraightluxControls.def"
    };
    enum class ResetScope {
        kFieldsOnly,      // the controls and their host fields
        kFieldsAndModel,  // also the model fields and the line-edit state
    };
    // The time at which the plug-in writes and reads back its own controls:
    // the host record itself (the cached value), not an animation key.
    static constexpr double kCachedTime = -1.0;

    // Sets each listed field's control to its default (at kCachedTime), in
    // the order given, and with kFieldsAndModel the matching model field
    // too. The one place the lens defaults are applied.
    void resetLens(const LensField* fields, int count, ResetScope scope);
    template <int N>
    void resetLens(const LensField (&fields)[N], ResetScope scope) {
        resetLens(fields, N, scope);
    }

    // Control callbacks, called by the host binding with the control and the frame.
    void ResetCB(ControlZel& control, double frame);
    void AutoCB(ControlZel& control, double frame);
    void KillLinesCB(ControlZel& control, double frame);
    void LineEditCB(ControlZel& control, double frame);

    // Straightness error of the drawn lines, in pixels, with radial2 (second)
    // or radial1 set to value for the measurement; refills errorPoints.
    double MeasureError(double value, bool second);
    // Fits radial1 and radial2 to the drawn lines; false when no line has
    // more than two points.
    bool OptimizeK1K2();

    // The model values of the last finished frame, compared by ControlsChanged.
    struct SavedValues {
        float centreX, centreY, normScale, squeeze, radial1, radial2, xCurvature, yCurvature;
        int32_t sampling;
        float magnify;
        int32_t mode;
    };

    StraightluxInfo info;
    // The model fields width ... yCurvature and iterationTotal are StraightluxModel's.
    int32_t savedWidth = -1;  // size for which the map and the saved values hold
    int32_t savedHeight = -1;
    float frameAspect = 1.0f;  // the result image's pixel aspect and second scale, copied per frame
    float frameScale = 1.0f;
    bool dirty = true;   // forces the next frame to rebuild the map
    float penX = 0.75f;  // last pointer position over the viewer, fractions of the frame
    float penY = 0.25f;
    bool newLine = true;                       // the next "Add Line" click starts a new polyline
    int32_t lastLineEdit = kLineEditNoAction;  // "LineEdit" value seen by the last callback
    int32_t sampling = kSamplingSharpCubic;    // "Sampling" entry, the resampler's mode
    float magnify = 1.0f;
    int32_t mode = kModeRemove;
    SavedValues saved = {};
    // width x height entries of (source x, source y), row-major; image allocator.
    float* addressMap = nullptr;
    ImageXfmZel* xfm = nullptr;
    ImageZel* scratch = nullptr;  // width x height work image of the magnify pass
    PolyLineSet2DZel* lines = nullptr;
    PolyLine2DZel* currentLine = nullptr;  // the line being drawn or edited
    tagDPT2* errorPoints = nullptr;        // mapped points of the last measurement, pixels
    int32_t errorPointCount = 0;
    float pressure = 0.0f;  // pen pressure of the last pointer event in the viewer
    // What the overlay reads and edits; built after the members it names.
    StraightluxOverlayParts overlayParts{
        *this,   info.crosshair, info.linePen, info.centre.x, info.centre.y, penX,           penY,
        newLine, lastLineEdit,   lines,        currentLine,   errorPoints,   errorPointCount};

  private:
    void freeErrorPoints();
    // One-dimensional compass search of radial2 (second) or radial1 from start.
    double compassSearch(double start, bool second);
};
