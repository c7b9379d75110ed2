// Pointer gestures to SparkInteract calls.
#include "ViewerPointer.h"

#include <cmath>

#include "SimHost.h"
#include "Viewer.h"

namespace simhost {

unsigned long* ViewerPointer::send(float x, float y, float p) {
    const double ratio = Host::instance().viewerRatio;
    const int sx = info_.FrameBufferX + static_cast<int>(std::lround(x * ratio * scale_));
    const int sy = info_.FrameBufferY + static_cast<int>(std::lround(y * scale_));
    return plugin_.interact(info_, sx, sy, p, x, y, Viewer(scale_).zoomArgument());
}

}  // namespace simhost
