// DisplayFrame: a frame as the viewer shows it, 8-bit RGB without padding,
// rows BOTTOM first (frame row y = 0 first, as the host buffers and OpenGL
// textures hold them; simhost/Viewer.h states the row rule).
//
// From a host buffer (depth 24 or 48) each channel maps with HostPixels'
// rounding (a 12-bit v shows as (v * 255 + 2047) / 4095). From a file's
// picture (rows top first) the mapping is the one the simulated host's viewer
// uses for its background (ViewerPictures.h), so the input shows exactly as
// sparkrun's --overlay picture shows it.
#pragma once

#include <cstdint>
#include <vector>

#include "FilePixels.h"

struct DisplayFrame {
    int width = 0;
    int height = 0;
    unsigned frame = 0;  // the host frame number it shows
    std::vector<uint8_t> rgb;

    bool empty() const { return rgb.empty(); }
    // Channel c of frame pixel (x, y), y up.
    uint8_t at(int x, int y, int c) const {
        return rgb[(static_cast<size_t>(y) * width + x) * 3 + c];
    }
};

DisplayFrame displayFromHostBuffer(const unsigned char* buffer, int width, int height, int depth);
DisplayFrame displayFromPicture(const FilePixels& picture);
