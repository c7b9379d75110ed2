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
// A grid line covers about 3 pixels across; its centre is weighed over 7.
constexpr int kCoreHalfWidth = 3;
// Outside those 7 pixels the window must stay lighter than this share of the line.
constexpr double kStrayShare = 0.2;
// Where a sample may move along its line, in cells, in the order tried.
constexpr double kShifts[] = {0.0, 0.15, -0.15, 0.3, -0.3};

// A float sample as the chart shows it: 0..1, where a value above 1 is white
// and one below 0, or not a number, is black (so that no infinity or NaN
// reaches the arithmetic that follows).
double shown(float sample) {
    if (sample > 1.0f) return 1.0;
    return sample >= 0.0f ? sample : 0.0;
}

// Luminance, 0..1, of a pixel of the picture.
double luminance(const FilePixels& picture, int x, int y) {
    const size_t at = (static_cast<size_t>(y) * picture.width + x) * kRgbChannels;
    double r, g, b;
    if (picture.isFloat) {
        r = shown(picture.reals[at]), g = shown(picture.reals[at + 1]),
        b = shown(picture.reals[at + 2]);
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
// refined to the darkness-weighted centre of the 7 pixels about it. The
// profile must show one thin line: its darkest pixel inside the window (not
// on its edge, where the line may lie beyond) and nothing else in the window
// darker than kStrayShare of the line, as a crossing grid line or the border
// would be. False when it does not.
bool findAcross(const Axis& axis, int along, double predicted, double window, Found& found) {
    const int lo = std::max(1, static_cast<int>(std::floor(predicted - window)));
    const int hi = std::min(axis.acrossSize - 2, static_cast<int>(std::ceil(predicted + window)));
    if (hi - lo < 2 * kCoreHalfWidth) return false;
    double background = 0.0;
    int darkest = lo;
    double darkestLum = 2.0;
    for (int a = lo; a <= hi; ++a) {
        const double lum = axis.lum(along, a);
        background = std::max(background, lum);
        if (lum < darkestLum) darkestLum = lum, darkest = a;
    }
    const double darkness = background - darkestLum;
    if (darkest == lo || darkest == hi || darkness <= 0.0) return false;
    for (int a = lo; a <= hi; ++a)
        if (std::abs(a - darkest) > kCoreHalfWidth &&
            background - axis.lum(along, a) > kStrayShare * darkness)
            return false;
    double weight = 0.0, moment = 0.0;
    for (int a = std::max(0, darkest - kCoreHalfWidth);
         a <= std::min(axis.acrossSize - 1, darkest + kCoreHalfWidth); ++a) {
        const double d = std::max(0.0, background - axis.lum(along, a));
        weight += d;
        moment += d * a;
    }
    if (weight <= 0.0) return false;
    found.position = moment / weight;
    found.darkness = darkness;
    return true;
}

// Follows the grid line that crosses the frame's centre line at `start`
// (across), sampling halfway between the crossing lines, from the centre
// outwards in both directions. Where a crossing line (bent by the lens) or
// the border spoils the profile, the sample moves up to 0.3 of a cell along
// the line; the line ends where no clean sample is found.
std::vector<LinePoint> follow(const Axis& axis, double start, double centreAlong, double cell,
                              bool alongIsX) {
    const double margin = 0.6 * cell;  // keeps clear of the border and the frame edge
    const double window = std::max(4.0, 0.15 * cell);
    auto point = [alongIsX](double along, double across) {
        return alongIsX ? LinePoint{along, across} : LinePoint{across, along};
    };
    // A clean sample near `along`, the line near `predicted`.
    auto sample = [&](double along, double predicted, double searched, int& at, Found& found) {
        for (double shift : kShifts) {
            at = static_cast<int>(std::lround(along + shift * cell));
            if (at < margin || at > axis.alongSize - 1 - margin) continue;
            if (findAcross(axis, at, predicted, searched, found)) return true;
        }
        return false;
    };
    Found first;
    int firstAt = 0;
    if (!sample(centreAlong + 0.5 * cell, start, 0.45 * cell, firstAt, first) ||
        first.darkness < kMinDarkness) {
        return {};
    }
    std::vector<LinePoint> forward, backward;
    for (int direction : {1, -1}) {
        std::vector<LinePoint>& side = direction > 0 ? forward : backward;
        double previous = first.position, beforePrevious = first.position;
        for (int m = direction > 0 ? 0 : -1;; m += direction) {
            const double along = centreAlong + (m + 0.5) * cell;
            if (along < margin || along > axis.alongSize - 1 - margin) break;
            const double predicted = previous + (previous - beforePrevious);
            Found here;
            int at = 0;
            if (!sample(along, predicted, window, at, here) ||
                here.darkness < kLostShare * first.darkness || here.position < margin ||
                here.position > axis.acrossSize - 1 - margin) {
                break;
            }
            side.push_back(point(at, here.position));
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
