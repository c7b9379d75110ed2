#include "SparkViewer.h"

#include <cmath>

#include "ControlBinding.h"
#include "EntryGuard.h"
#include "PluginInstance.h"
#include "SparkControlRecords.h"
#include "SparkEntryPoints.h"

namespace {

// Pointer events as the viewer entry derives them from the pen pressure.
constexpr int kMove = 0;
constexpr int kPress = 1;
constexpr int kDrag = 2;
constexpr int kRelease = 3;
constexpr int kReleaseHandled = 4;

// Viewer cursors.
constexpr int kCursorNormal = 1;
constexpr int kCursorGrab = 14;
constexpr int kCursorOverHandle = 20;

// State kept between calls, for the life of the library; nothing resets it
// between clips, so a drag that ends outside the viewer is read as a release
// at the next event without pressure.
float lp = 0.0f;  // pressure of the previous call
int state = 0;    // event of the current call
int picked = 0;   // a press grabbed a handle of either widget

bool overlayCleared() { return SparkBoolean28.Value != 0; }

void drawOverlay(const SparkInfoStruct& info, float zoom) {
    if (overlayCleared()) return;
    SparkGraphInfoStruct graph = {};
    sparkGraphSetup(&graph);
    const float ratio = sparkGetViewerRatio();
    // A zoom below 1 is a reduction coded as a negative number: -2 is a half.
    // Every zoom below 1 is read so, deliberately.
    const float scale = zoom < 1.0f ? 1.0f / (-zoom) : zoom;

    OverlayZel& surface = Instance;
    surface.aspectDenominator = 1.0f;
    surface.frameWidth = static_cast<int32_t>(std::lround(info.FrameWidth * ratio));
    surface.aspectNumerator = (1.0f + graph.PixelAspectRatio) - ratio;
    surface.frameHeight = info.FrameHeight;
    surface.zoom = scale;

    copyHostValuesToControls(Instance.info);
    bindOverlayWidgets(Instance.info, surface);

    glLoadIdentity();
    glTranslatef(static_cast<float>(info.FrameBufferX), static_cast<float>(info.FrameBufferY),
                 0.0f);
    glScalef(scale, scale, 1.0f);
    Instance.RenderOverlay();
    glFlush();
}

bool anyHandle(bool selected) {
    const StraightluxInfo& c = Instance.info;
    if (selected) return c.crosshair.selected != 0 || c.linePen.selected != 0;
    return c.crosshair.highlighted != 0 || c.linePen.highlighted != 0;
}

unsigned long* interact(const SparkInfoStruct& info, float pressure, float x, float y) {
    if (info.Context == 0) return nullptr;
    SparkGraphInfoStruct graph = {};
    sparkGraphSetup(&graph);
    const float ratio = sparkGetViewerRatio();
    Instance.pressure = pressure;
    if (overlayCleared()) return nullptr;

    if (lp == 0.0f && pressure > 0.0f) {
        state = kPress;
    } else if (lp > 0.0f && pressure > 0.0f) {
        state = kDrag;
    } else if (lp > 0.0f && pressure == 0.0f) {
        state = kRelease;
    } else {
        state = kMove;
    }
    lp = pressure;

    Instance.HandleInteraction(static_cast<InterType>(state), x * ratio, y);

    switch (state) {
        case kPress:
            picked = 0;
            if (anyHandle(true)) {
                picked = 1;
                sparkViewingCursor(kCursorGrab);
            } else {
                sparkViewingCursor(kCursorNormal);
            }
            sparkViewingDraw();
            break;
        case kMove:
            sparkViewingCursor(anyHandle(false) ? kCursorOverHandle : kCursorNormal);
            break;
        case kDrag:
            sparkViewingDraw();
            break;
        case kRelease:
            sparkViewingCursor(kCursorNormal);
            state = kReleaseHandled;
            sparkViewingDraw();
            break;
    }

    // A handle dragged and let go re-renders with the edited values.
    if (picked && state == kReleaseHandled && SparkBoolean34.Value != 0) {
        state = 0;
        return SparkProcess(info);
    }
    state = 0;
    return nullptr;
}

}  // namespace

void SparkOverlay(SparkInfoStruct info, float zoom) {
    guardedCall([&] { drawOverlay(info, zoom); });
}

unsigned long* SparkInteract(SparkInfoStruct info, int, int, float pressure, float x, float y,
                             float) {
    return guardedCallback([&] { return interact(info, pressure, x, y); });
}

void render_string(void) {}
