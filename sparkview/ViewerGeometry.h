// ViewerGeometry: where the frame sits in the viewer, and the conversions
// between the viewer's screen pixels and the frame's own units.
//
// Screen pixels are the viewer's device pixels counted from its LOWER left
// corner, x right and y up, an integer at each pixel's centre (the viewer's
// projection is set so). Frame units follow simhost/Viewer.h: frame point
// (i, j) is the centre of frame pixel (i, j), y up from the bottom row. The
// frame's origin (frame point (0, 0)) sits at the whole screen pixel
// `origin`; one frame pixel spans `scale` screen pixels. These are the
// host's FrameBufferX/Y and zoom. The zoom argument of SparkOverlay and
// SparkInteract codes a scale below 1 as -1 / scale (a half size is -2).
#pragma once

struct ScreenPoint {
    double x = 0.0;
    double y = 0.0;
};

class ViewerGeometry {
  public:
    static constexpr double kMinScale = 1.0 / 32.0;
    static constexpr double kMaxScale = 64.0;
    static constexpr double kWheelStep = 1.25;  // one wheel notch

    // The viewer's size in screen pixels and the frame's in frame pixels.
    void setViewerSize(int width, int height);
    void setFrameSize(int width, int height);
    int viewerWidth() const { return viewerWidth_; }
    int viewerHeight() const { return viewerHeight_; }
    int frameWidth() const { return frameWidth_; }
    int frameHeight() const { return frameHeight_; }

    // The whole frame in the viewer, its centre at the viewer's centre.
    void fit();
    // One frame pixel to one screen pixel, centred.
    void oneToOne();
    // Scale by factor (clamped) keeping the frame point under `about` still.
    void zoomAbout(ScreenPoint about, double factor);
    // Move the frame by whole screen pixels.
    void pan(int dx, int dy);

    double scale() const { return scale_; }
    int originX() const { return originX_; }
    int originY() const { return originY_; }
    float zoomArgument() const;

    ScreenPoint frameFromScreen(ScreenPoint screen) const;
    ScreenPoint screenFromFrame(ScreenPoint frame) const;

  private:
    // Puts the frame's centre at the viewer's centre at the current scale.
    void centre();

    int viewerWidth_ = 1;
    int viewerHeight_ = 1;
    int frameWidth_ = 1;
    int frameHeight_ = 1;
    double scale_ = 1.0;
    int originX_ = 0;
    int originY_ = 0;
};
