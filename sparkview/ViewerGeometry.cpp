// Placing the frame in the viewer.
#include "ViewerGeometry.h"

#include <algorithm>
#include <cmath>

void ViewerGeometry::setViewerSize(int width, int height) {
    viewerWidth_ = std::max(1, width);
    viewerHeight_ = std::max(1, height);
}

void ViewerGeometry::setFrameSize(int width, int height) {
    frameWidth_ = std::max(1, width);
    frameHeight_ = std::max(1, height);
}

void ViewerGeometry::centre() {
    // Frame centre ((w - 1) / 2, (h - 1) / 2) on the viewer's centre pixel.
    originX_ =
        static_cast<int>(std::lround((viewerWidth_ - 1) / 2.0 - (frameWidth_ - 1) / 2.0 * scale_));
    originY_ = static_cast<int>(
        std::lround((viewerHeight_ - 1) / 2.0 - (frameHeight_ - 1) / 2.0 * scale_));
}

void ViewerGeometry::fit() {
    const double across = static_cast<double>(viewerWidth_) / frameWidth_;
    const double down = static_cast<double>(viewerHeight_) / frameHeight_;
    scale_ = std::clamp(std::min(across, down), kMinScale, kMaxScale);
    centre();
}

void ViewerGeometry::oneToOne() {
    scale_ = 1.0;
    centre();
}

void ViewerGeometry::zoomAbout(ScreenPoint about, double factor) {
    const ScreenPoint held = frameFromScreen(about);
    scale_ = std::clamp(scale_ * factor, kMinScale, kMaxScale);
    originX_ = static_cast<int>(std::lround(about.x - held.x * scale_));
    originY_ = static_cast<int>(std::lround(about.y - held.y * scale_));
}

void ViewerGeometry::pan(int dx, int dy) {
    originX_ += dx;
    originY_ += dy;
}

float ViewerGeometry::zoomArgument() const {
    // The host's code for a reduction: -1 / scale (the plug-in reads it back as 1 / -zoom).
    return scale_ >= 1.0 ? static_cast<float>(scale_) : static_cast<float>(-1.0 / scale_);
}

ScreenPoint ViewerGeometry::frameFromScreen(ScreenPoint screen) const {
    return {(screen.x - originX_) / scale_, (screen.y - originY_) / scale_};
}

ScreenPoint ViewerGeometry::screenFromFrame(ScreenPoint frame) const {
    return {originX_ + frame.x * scale_, originY_ + frame.y * scale_};
}
