// The viewer entry points: the host calls SparkOverlay whenever it redraws
// the viewer, so the plug-in draws its widgets over the frame (OpenGL, frame
// units, origin at the frame's lower left), and SparkInteract for every
// pointer event in the viewer, x and y in frame units, pressure 0 when no
// button or pen is down. render_string is exported for the host and does
// nothing.
#pragma once

#include "SparkApi.h"
#include "SparkExport.h"

extern "C" {
SPARK_EXPORT void SparkOverlay(SparkInfoStruct info, float zoom);
// A new frame for the host to show (a release after a drag with "Auto
// Preview" on), or null.
SPARK_EXPORT unsigned long* SparkInteract(SparkInfoStruct info, int screenX, int screenY,
                                          float pressure, float x, float y, float zoom);
SPARK_EXPORT void render_string(void);
}
