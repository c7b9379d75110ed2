// ViewerPictures: a file's picture as the background of the simulated host's
// viewer, and the viewer's picture as samples for a file.
//
// Both pictures run top row first, so neither is flipped here (the host
// buffers' bottom-first rows are HostPixels' business). The viewer works in
// 8 bits a channel: integer samples map with HostPixels' 16-to-8-bit
// rounding, float samples as clamp(f, 0, 1) * 255 rounded (no display
// transform), alpha is full. Back to a file, the viewer's alpha is dropped
// and each 8-bit level v becomes v (8-bit), v * 257 (16-bit) or v / 255 (float).
#pragma once

#include <Viewer.h>

#include "FilePixels.h"
#include "HostPixels.h"

simhost::ViewerImage viewerBackground(const FilePixels& picture);

RgbSamples viewerSamples(const simhost::ViewerImage& picture, SampleType type);
