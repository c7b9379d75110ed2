// Pointer gestures over the simulated host's viewer, turned into
// SparkInteract calls the way a host sends them: every event carries the
// pointer in frame units (VX, VY; origin at the frame's lower left, see
// Viewer.h for the row-order rule), its screen position (SX, SY = the frame's
// origin in the viewer plus the frame position times the viewer's scale and,
// horizontally, its ratio) and the pen pressure, 0 while no button is down.
// The plug-in tells the event kinds apart by the pressure alone: a press is
// pressure above 0 after 0, a drag above 0 after above 0, a release 0 after
// above 0, a move 0 after 0. Each call returns what SparkInteract returned
// (a frame to show, or null).
#pragma once

#include <spark.h>

namespace simhost {

class Plugin;

class ViewerPointer {
  public:
    // scale as Viewer's: screen pixels per frame pixel.
    ViewerPointer(Plugin& plugin, const SparkInfoStruct& info, float scale = 1.0f)
        : plugin_(plugin), info_(info), scale_(scale) {}

    unsigned long* move(float x, float y) { return send(x, y, 0.0f); }
    unsigned long* press(float x, float y) { return send(x, y, pressure); }
    unsigned long* drag(float x, float y) { return send(x, y, pressure); }
    unsigned long* release(float x, float y) { return send(x, y, 0.0f); }
    // Press and release at one point; returns the release's answer.
    unsigned long* click(float x, float y) {
        press(x, y);
        return release(x, y);
    }

    float pressure = 1.0f;  // sent while the button is down

  private:
    unsigned long* send(float x, float y, float p);

    Plugin& plugin_;
    SparkInfoStruct info_;
    float scale_;
};

}  // namespace simhost
