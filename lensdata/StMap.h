// ST-maps of a set-up: for every output pixel, the source position that the
// plug-in samples, as compositors' STMap nodes and `oiiotool --st_warp`
// (flip_t=1) read it (conventions in LensConventions.h): R = s, G = t, B = 0.
// The values are the plug-in's own address map, computed by the functions its
// Remove and Add passes call; with Magnify outside its dead band the zoom
// about the frame centre is composed in, so one warp gives the whole picture.
// Where the model's inverse fails the plug-in samples pixel (0, 0) (the
// bottom-left pixel as the picture is shown) and the map says so:
// s = 0.5 / W, t = 0.5 / H.
//
// Overscan extends the canvas by that percentage of the frame on each side
// (truncated to whole pixels); the model continues outside the frame, and s
// and t stay fractions of the source frame, so they run below 0 and above 1
// there. Maps are always full size: the host's proxy menu only previews the
// plug-in at a lower resolution.
#pragma once

#include <cstdint>
#include <vector>

#include "LensDataStatus.h"
#include "LensSetup.h"
#include "tagDPT.h"

struct StMap {
    int32_t width = 0;  // canvas: the frame plus the overscan on each side
    int32_t height = 0;
    int32_t overscanX = 0;   // pixels added on the left and on the right
    int32_t overscanY = 0;   // pixels added at the bottom and at the top
    std::vector<float> rgb;  // width x height x 3, rows top first as a file holds them
};

// One source position per output pixel, in the plug-in's pixels (integer
// centres, rows from the bottom), for frame pixels that may lie outside the frame.
class StMapSampler {
  public:
    StMapSampler(const LensSetup& setup, int32_t width, int32_t height);
    tagDPT2 sourceOf(int32_t x, int32_t y) const;

  private:
    StraightluxModel model_;
    bool inverse_;
    bool magnify_;
    StraightluxModel::InversePlan plan_;
    StraightluxModel::FloatCoefficients forward_;
    double zoom_[6];  // the magnify pass's output -> resampled-frame matrix
    double zoomW_;
};

// Canvas pixels added on each side for an overscan percentage.
int32_t overscanPixels(int32_t size, double percent);

LensDataStatus makeStMap(const LensSetup& setup, int32_t width, int32_t height,
                         double overscanPercent, StMap& map);
