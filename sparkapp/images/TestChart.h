// TestChart: the bundled default input, a chart of straight lines on which
// lens distortion is easy to see: a square grid centred on the frame, the two
// lines through the centre in blue, a red border a little inside the frame
// edge. Lines are anti-aliased (their coverage of each pixel, measured from
// the pixel centre) so that resampling them is fair. The picture depends only
// on its size, so the same size always gives the same file.
#pragma once

#include <string>

#include "RunStatus.h"

const int kChartWidth = 960;
const int kChartHeight = 540;

// Writes the chart as 8-bit RGB to path.
RunStatus writeTestChart(const std::string& path, int width, int height);
