// StraightluxInfo: the host-visible parts of the lens plug-in, its control
// objects in the order of its setup page. The host binding binds each to its
// host record at start-up and refreshes the cached values before every frame.
// Positions are fractions of the frame; list values are 1-based entry numbers.
#pragma once

#include "ButtonControlZel.h"
#include "CrosshairOverlayZel.h"
#include "FloatControlZel.h"
#include "ListControlZel.h"
#include "PositionControlZel.h"
#include "StraightluxControlTable.h"
#include "StraightluxLinePenOverlayZel.h"

// "Sampling" entries: the resampler's modes 1..5.
enum StraightluxSampling {
    kSamplingNearest = 1,
    kSamplingLinear,
    kSamplingCubic,
    kSamplingSharpCubic,
    kSamplingBSpline
};
// "LineEdit" entries.
enum StraightluxLineEdit {
    kLineEditNoAction = 1,
    kLineEditAddLine,
    kLineEditDeleteLine,
    kLineEditMovePoint,
    kLineEditDeletePoint,
    kLineEditInsertPoint
};
// "Mode" entries.
enum StraightluxMode { kModeRemove = 1, kModeAdd, kModeAutoRemove };
// "View" entries.
enum StraightluxView { kViewResult = 1, kViewInput };

// The entry numbers above and the control table describe the same menus.
static_assert(kSamplingControl.defaultItem() == kSamplingSharpCubic, "Sampling default");
static_assert(kSamplingControl.entryCount == kSamplingBSpline, "Sampling entries");
static_assert(kLineEditControl.defaultItem() == kLineEditNoAction, "LineEdit default");
static_assert(kLineEditControl.entryCount == kLineEditInsertPoint, "LineEdit entries");
static_assert(kModeControl.defaultItem() == kModeRemove, "Mode default");
static_assert(kModeControl.entryCount == kModeAutoRemove, "Mode entries");
static_assert(kViewControl.defaultItem() == kViewResult, "View default");
static_assert(kViewControl.entryCount == kViewInput, "View entries");

struct StraightluxInfo {
    // The input and output clips are the plug-in base's `input` and `output`.

    // The viewer widgets: the distortion centre and the line pen (colour
    // words 65535 and enabled when constructed; the viewer entry binds them
    // and gives them their colours before every redraw).
    CrosshairOverlayZel crosshair;
    StraightluxLinePenOverlayZel linePen;

    // One control object per lens field and button of the control list
    // (StraightluxControls.def), in its order.
#define STRAIGHTLUX_FLOAT(Name, N, member) FloatControlZel member;
#define STRAIGHTLUX_POSITION(Name, NX, NY, member) PositionControlZel member;
#define STRAIGHTLUX_MENU(Name, N, member) ListControlZel member;
#define STRAIGHTLUX_BUTTON(Name, N, member, pluginCallback) ButtonControlZel member;
#include "StraightluxControls.def"
};
