// Drawing the test chart.
#include "TestChart.h"

#include <algorithm>
#include <cmath>

#include "HostPixels.h"
#include "ImageFiles.h"

namespace {
const int kCellsDown = 9;           // grid cells over the frame height
const int kMinCell = 8;             // pixels
const double kLineHalfWidth = 1.0;  // pixels either side of a grid line's centre
const double kBorderHalfWidth = 2.0;
const double kBorderInsetCells = 0.15;  // of a cell, from the frame edge

struct Colour {
    double r, g, b;  // 0..1
};
const Colour kBackground = {0.91, 0.91, 0.89};
const Colour kGrid = {0.09, 0.09, 0.09};
const Colour kCentreLines = {0.12, 0.24, 0.78};
const Colour kBorder = {0.78, 0.16, 0.16};

// Share of a pixel covered by a line of the half width at the given distance
// from its centre: a box filter one pixel wide.
double coverage(double distance, double halfWidth) {
    return std::clamp(halfWidth + 0.5 - std::fabs(distance), 0.0, 1.0);
}

// Distance from p to the nearest grid line through centre + k * cell.
double gridDistance(double p, double centre, double cell) {
    const double offset = std::fmod(std::fabs(p - centre), cell);
    return std::min(offset, cell - offset);
}

Colour over(const Colour& base, const Colour& top, double amount) {
    return {base.r + (top.r - base.r) * amount, base.g + (top.g - base.g) * amount,
            base.b + (top.b - base.b) * amount};
}
}  // namespace

RunStatus writeTestChart(const std::string& path, int width, int height) {
    if (width < 1 || height < 1 || width > kMaxFrameSide || height > kMaxFrameSide)
        return RunStatus::failure(
            ExitCode::Usage,
            "chart size must be 1 to " + std::to_string(kMaxFrameSide) + " pixels on each side");
    RunStatus status = checkOutputPath(path);
    if (!status.ok()) return status;
    const double cell = std::max(kMinCell, height / kCellsDown);
    // Pixel centres sit at integer positions; the frame centre between them.
    const double centreX = (width - 1) / 2.0;
    const double centreY = (height - 1) / 2.0;
    const double inset = cell * kBorderInsetCells;
    RgbSamples samples;
    samples.type = SampleType::Eight;
    samples.eights.resize(static_cast<size_t>(width) * height * kRgbChannels);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double grid = std::max(coverage(gridDistance(x, centreX, cell), kLineHalfWidth),
                                         coverage(gridDistance(y, centreY, cell), kLineHalfWidth));
            const double centre = std::max(coverage(x - centreX, kLineHalfWidth),
                                           coverage(y - centreY, kLineHalfWidth));
            // Distance to the border rectangle's outline, inside or outside it.
            const double dx = std::min(std::fabs(x - inset), std::fabs(width - 1 - inset - x));
            const double dy = std::min(std::fabs(y - inset), std::fabs(height - 1 - inset - y));
            const bool insideX =
                x >= inset - kBorderHalfWidth - 1 && x <= width - 1 - inset + kBorderHalfWidth + 1;
            const bool insideY =
                y >= inset - kBorderHalfWidth - 1 && y <= height - 1 - inset + kBorderHalfWidth + 1;
            double border = 0.0;
            if (insideY) border = std::max(border, coverage(dx, kBorderHalfWidth));
            if (insideX) border = std::max(border, coverage(dy, kBorderHalfWidth));

            Colour colour = over(kBackground, kGrid, grid);
            colour = over(colour, kCentreLines, centre);
            colour = over(colour, kBorder, border);
            uint8_t* pixel = &samples.eights[(static_cast<size_t>(y) * width + x) * kRgbChannels];
            pixel[0] = static_cast<uint8_t>(eightFromFloat(static_cast<float>(colour.r)));
            pixel[1] = static_cast<uint8_t>(eightFromFloat(static_cast<float>(colour.g)));
            pixel[2] = static_cast<uint8_t>(eightFromFloat(static_cast<float>(colour.b)));
        }
    }
    return writeImage(path, width, height, samples);
}
