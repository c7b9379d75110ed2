// ChartTracer: finds the grid lines of the bundled test chart (TestChart.h)
// in a picture of it, distorted or not, as a user would draw them by eye:
// points along a few rows and columns of the grid, near the frame's edges
// where a lens bends them most and through the middle. Each line is followed
// from the frame's centre outwards; every point is the darkness-weighted
// centre of the line across a small window, taken halfway between crossing
// grid lines. Points are in image pixels (x right, y down, pixel centres at
// integers), ready for a lines file. Float pictures are read as shown:
// values above 1 as white, below 0 and not-a-number as black.
#pragma once

#include "FilePixels.h"
#include "LinesFile.h"

// The chart's grid lines found in the picture; lines that fade out (moved off
// the frame, or too faint) are cut where they were lost, and lines left with
// fewer than three points are dropped.
LinesFile traceChartLines(const FilePixels& picture);
