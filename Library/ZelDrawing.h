// Null-safe forms of the host's OpenGL 1.x immediate-mode calls, for the
// viewer overlay. Coordinates are frame units with the origin at the frame's
// lower left (the viewer sets up the projection); colours are 0.0 to 1.0.
// An unset call does nothing, so overlay code runs without a host.
#pragma once

#include "ZelHost.h"

// OpenGL's primitive modes, as ZelDrawingCalls::begin takes them.
constexpr unsigned int kZelPoints = 0x0000;
constexpr unsigned int kZelLines = 0x0001;
constexpr unsigned int kZelPolygon = 0x0009;

inline void zelDrawBegin(unsigned int mode) {
    if (zelHost().drawing.begin) zelHost().drawing.begin(mode);
}
inline void zelDrawEnd() {
    if (zelHost().drawing.end) zelHost().drawing.end();
}
inline void zelDrawVertex(float x, float y) {
    if (zelHost().drawing.vertex) zelHost().drawing.vertex(x, y);
}
inline void zelDrawColour(float r, float g, float b) {
    if (zelHost().drawing.colour) zelHost().drawing.colour(r, g, b);
}
