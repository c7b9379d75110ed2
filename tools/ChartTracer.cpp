#include "ChartTracer.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// The chart's layout (TestChart.cpp): a cell of height / 9 pixels, at least 8,
// with grid lines through the frame's centre and every cell from it.
constexpr int kCellsDown = 9;
constexpr int kMinCell = 8;
// A line is lost when its darkness falls below this share of its first point's.
constexpr double kLostShare = 0.3;
constexpr double kMinDarkness = 0.05;  // of full scale, against the background

// Luminance, 0..1, of a pixel of the picture.
double luminance(const FilePixels& picture, int x, int y) {
    const size_t at = (static_cast<size_t>(y) * picture.width + x) * kRgbChannels;
    double r, g, b;
    if (picture.isFloat) {
        r = picture.reals[at], g = picture.reals[at + 1], b = picture.reals[at + 2];
    } else {
        r = picture.words[at] / 65535.0, g = picture.words[at + 1] / 65535.0,
        b = picture.words[at + 2] / 65535.0;
    }
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

// One axis of the picture: `across(along, across)` reads the luminance with
// the line running along the first coordinate.
struct Axis {
    int alongSize;
    int acrossSize;
    std::function<double(int along, int across)> lum;
};

struct Found {
    double position;  // across the line, pixels
    double darkness;  // peak darkness against the window's background
};

// The line near `predicted` at `along`: the darkest pixel within the window,
// refined to the darkness-weighted centre of the 7 pixels about it.
bool findAcross(const Axis& axis, int along, double predicted, double window, Found& found) {
    const int lo = std::max(1, static_cast<int>(std::floor(predicted - window)));
    const int hi = std::min(axis.acrossSize - 2, static_cast<int>(std::ceil(predicted + window)));
    if (lo > hi) return false;
    double background = 0.0;
    int darkest = lo;
    double darkestLum = 2.0;
    for (int a = lo; a <= hi; ++a) {
        const double lum = axis.lum(along, a);
        background = std::max(background, lum);
        if (lum < darkestLum) darkestLum = lum, darkest = a;
    }
    double weight = 0.0, moment = 0.0;
    for (int a = std::max(0, darkest - 3); a <= std::min(axis.acrossSize - 1, darkest + 3); ++a) {
        const double d = std::max(0.0, background - axis.lum(along, a));
        weight += d;
        moment += d * a;
    }
    if (weight <= 0.0) return false;
    found.position = moment / weight;
    found.darkness = background - darkestLum;
    return true;
}

// Follows the grid line that crosses the frame's centre line at `start`
// (across), sampling halfway between the crossing lines, from the centre
// outwards in both directions.
std::vector<LinePoint> follow(const Axis& axis, double start, double centreAlong, double cell,
                              bool alongIsX) {
    const double margin = 0.6 * cell;  // keeps clear of the border and the frame edge
    std::vector<LinePoint> forward, backward;
    Found first;
    const double firstAlong = centreAlong + 0.5 * cell;
    if (!findAcross(axis, static_cast<int>(std::lround(firstAlong)), start, 0.45 * cell, first) ||
        first.darkness < kMinDarkness) {
        return {};
    }
    auto point = [alongIsX](double along, double across) {
        return alongIsX ? LinePoint{along, across} : LinePoint{across, along};
    };
    for (int direction : {1, -1}) {
        std::vector<LinePoint>& side = direction > 0 ? forward : backward;
        double previous = first.position, beforePrevious = first.position;
        for (int m = direction > 0 ? 0 : -1;; m += direction) {
            const double along = centreAlong + (m + 0.5) * cell;
            if (along < margin || along > axis.alongSize - 1 - margin) break;
            const double predicted = previous + (previous - beforePrevious);
            Found here;
            if (!findAcross(axis, static_cast<int>(std::lround(along)), predicted,
                            std::max(4.0, 0.15 * cell), here) ||
                here.darkness < kLostShare * first.darkness || here.position < margin ||
                here.position > axis.acrossSize - 1 - margin) {
                break;
            }
            side.push_back(point(along, here.position));
            beforePrevious = previous;
            previous = here.position;
        }
    }
    std::vector<LinePoint> line(backward.rbegin(), backward.rend());
    line.insert(line.end(), forward.begin(), forward.end());
    return line;
}

}  // namespace

LinesFile traceChartLines(const FilePixels& picture) {
    LinesFile out;
    const int width = picture.width;
    const int height = picture.height;
    if (width < 4 * kMinCell || height < 4 * kMinCell) return out;
    const double cell = std::max(kMinCell, height / kCellsDown);
    const double centreX = (width - 1) / 2.0;
    const double centreY = (height - 1) / 2.0;

    const Axis rows{width, height,
                    [&](int along, int across) { return luminance(picture, along, across); }};
    const Axis columns{height, width,
                       [&](int along, int across) { return luminance(picture, across, along); }};
    // The two outermost grid lines on each side of each axis.
    auto trace = [&](const Axis& axis, double centreAcross, double centreAlong, bool alongIsX) {
        const int outermost = static_cast<int>((axis.acrossSize - 1 - centreAcross - cell) / cell);
        for (int k : {-outermost, -outermost + 1, outermost - 1, outermost}) {
            if (k == 0) continue;
            std::vector<LinePoint> line =
                follow(axis, centreAcross + k * cell, centreAlong, cell, alongIsX);
            if (line.size() >= 3) out.lines.push_back(line);
        }
    };
    trace(rows, centreY, centreX, true);
    trace(columns, centreX, centreY, false);
    return out;
}
