// The simulated host's viewer: draws a plug-in's overlay into a real OpenGL
// context and hands the picture back.
//
// Viewer::render makes an off-screen OSMesa context (the library is loaded
// privately at run time; see GlForward.h for how the plug-in's gl* calls
// reach it), sets the projection a host viewer sets, calls the plug-in's
// SparkOverlay and reads the colour buffer back as 8-bit RGBA.
//
// Row order, one rule for the whole simulated host:
//   - Frame coordinates have their origin at the frame's lower left: x to the
//     right, y UP. Frame point (i, j), integers, is the centre of frame pixel
//     (i, j); pixel (0, 0) is the bottom-left pixel of the picture.
//   - A host frame buffer's row j holds frame row y = j: row 0 is the BOTTOM
//     row of the picture (as OpenGL stores images).
//   - Pictures for people and files are top row first. ViewerImage is such a
//     picture: its row r shows frame row y = height - 1 - r. An image file's
//     pixel (px, py), y down from the top-left pixel centre, is frame point
//     (px, height - 1 - py), and file row r goes to host buffer row
//     height - 1 - r.
//
// Projection: the picture is round(frame width * viewer ratio * scale) by
// round(frame height * scale) pixels (viewer ratio: Host::viewerRatio). The
// frame's origin in the viewer (SparkInfoStruct FrameBufferX, FrameBufferY)
// is (0, 0); the projection is orthographic in screen pixels with the
// lower-left corner of the picture at (-scale / 2, -scale / 2), so that with
// the plug-in's own glTranslatef(origin) and glScalef(zoom) frame point (i, j)
// lands on the centre of frame pixel (i, j) (at scale 1 exactly on picture
// pixel (i, j) from the bottom). SparkOverlay gets the zoom argument coded
// as a host does: the scale itself from 1 up, -1 / scale below 1 (a half
// size is -2).
//
// Threads: one viewer renders at a time, on the driving thread.
#pragma once

#include <spark.h>

#include <functional>
#include <string>
#include <vector>

namespace simhost {

class Plugin;

// An 8-bit RGBA picture, rows top first, no padding.
struct ViewerImage {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;  // width * height * 4

    // The pixel at column x of row r counted from the top.
    const unsigned char* pixel(int x, int r) const {
        return &rgba[(static_cast<size_t>(r) * width + x) * 4];
    }
    // The pixel of frame pixel (x, y), y up from the bottom row.
    const unsigned char* framePixel(int x, int y) const { return pixel(x, height - 1 - y); }
};

class Viewer {
  public:
    // scale: screen pixels per frame pixel (1 = the frame's own size; 0.5 = half).
    explicit Viewer(float scale = 1.0f) : scale_(scale) {}

    float scale() const { return scale_; }
    // The zoom argument a host passes for this scale.
    float zoomArgument() const;

    // Whether OSMesa can be loaded; the message says why not.
    static bool available(std::string* error = nullptr);

    // The largest picture side OSMesa draws.
    static constexpr long kMaxPictureSide = 16384;

    // Draws plugin's SparkOverlay for the frame size of `info` into `picture`.
    // With a background (a top-first picture of the frame's own size), the
    // frame is shown under the overlay, each frame pixel spread over its
    // scale x scale block. The background starts transparent black without
    // one. False with a message: no OSMesa, a picture size outside 1..16384,
    // a background of the wrong size.
    bool render(Plugin& plugin, const SparkInfoStruct& info, ViewerImage& picture,
                std::string* error = nullptr, const ViewerImage* background = nullptr) const;

    // The same with any drawing in place of a plug-in's SparkOverlay: `overlay`
    // gets the information record (origin 0, 0) and the zoom argument.
    using OverlayCall = std::function<void(const SparkInfoStruct& info, float zoom)>;
    bool render(const OverlayCall& overlay, const SparkInfoStruct& info, ViewerImage& picture,
                std::string* error = nullptr, const ViewerImage* background = nullptr) const;

  private:
    float scale_;
};

}  // namespace simhost
