// A lens set-up as the plug-in's controls hold it, in the host's units (the
// centre in percent of the frame, menus by their entry), and the model the
// plug-in builds from it for a frame. Only the controls that shape the
// picture's geometry are here; "Sampling" changes how a map is resampled,
// not the map.
#pragma once

#include <cstdint>
#include <string>

#include "LensDataStatus.h"
#include "StraightluxModel.h"

enum class LensMode { kRemove, kAdd, kAutoRemove };

struct LensSetup {
    LensMode mode = LensMode::kRemove;
    float radial1 = 0.0f;
    float radial2 = 0.0f;
    float xCurvature = 0.0f;
    float yCurvature = 0.0f;
    float centreXPercent = 50.0f;  // "Centre X", percent of the width
    float centreYPercent = 50.0f;  // "Centre Y", percent of the height from the bottom
    float squeeze = 1.0f;
    float magnify = 1.0f;
};

// Whether the map of this mode is the inverse model's (Remove, Auto Remove).
inline bool solvesInverse(LensMode mode) { return mode != LensMode::kAdd; }
// The menu entry's text, as the tool and set-ups name it ("Remove", "Add", "Auto Remove").
const char* modeName(LensMode mode);

// Every value finite and inside its control's range.
LensDataStatus checkSetup(const LensSetup& setup);
// A frame size the plug-in accepts: 1..32768 per side.
LensDataStatus checkFrameSize(int32_t width, int32_t height);

// The plug-in's model for a frame of width x height, loaded as its frames load it.
StraightluxModel modelOf(const LensSetup& setup, int32_t width, int32_t height);
