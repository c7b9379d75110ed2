// Settings scaled with the frame.
#include "LineDetectSettings.h"

#include <algorithm>
#include <cmath>

namespace {
const double kReferenceDiagonal = 2202.9;  // 1920 x 1080
}

LineDetectSettings lineSettingsFor(int width, int height) {
    LineDetectSettings s;
    const double diagonal = std::sqrt(double(width) * width + double(height) * height);
    s.scale = diagonal / kReferenceDiagonal;
    s.cannySigma = static_cast<float>(std::clamp(1.2 * std::sqrt(s.scale), 1.0, 2.0));
    s.minPieceLength = std::max(16.0, 30.0 * s.scale);
    s.minLineLength = std::max(40.0, 90.0 * s.scale);
    s.maxBlur = std::max(2.0, 3.5 * s.scale);
    s.textureBand = std::max(5.0, 8.0 * s.scale);
    s.clusterDistance = std::max(6.0, 12.0 * s.scale);
    s.sampleStep = std::max(6.0, 20.0 * s.scale);
    return s;
}
