// ImageCompare: the two picture utilities the demonstration needs, on image
// files: the mean absolute difference of two pictures over their interior,
// and a side-by-side picture (left | right) for looking at before and after.
// Differences are in 8-bit levels (0..255) whatever the files' depth.
#pragma once

#include <string>

#include "RunStatus.h"

// Mean of |a - b| over red, green and blue of the pixels at least
// marginPercent of the width (height) away from the left and right (top and
// bottom) edges. The pictures must have the same size.
RunStatus meanAbsDifference(const std::string& pathA, const std::string& pathB,
                            double marginPercent, double* mean);

// Writes left and right next to each other, a dark gap between them, as
// 8-bit RGB; a shorter picture is padded with black below.
RunStatus writeSideBySide(const std::string& left, const std::string& right,
                          const std::string& output);
