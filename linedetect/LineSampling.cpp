// Sampling a line's pieces into the points written.
#include "LineSampling.h"

#include <algorithm>
#include <cmath>

#include "PieceMerging.h"

namespace {
const std::size_t kMinPointsPerLine = 4;

// Appends the means of runs of about `step` of edge along points; a last
// run shorter than half a step is joined to the one before it.
void appendRuns(const Polyline& points, double step, Polyline& out) {
    double travelled = 0.0, sx = 0.0, sy = 0.0, lastX = 0.0, lastY = 0.0;
    int n = 0, lastN = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0)
            travelled += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
        sx += points[i].x;
        sy += points[i].y;
        ++n;
        const bool end = i + 1 == points.size();
        if (end && travelled < 0.5 * step && lastN > 0) {
            out.back() = {(sx + lastX) / (n + lastN), (sy + lastY) / (n + lastN)};
        } else if (travelled >= step || end) {
            out.push_back({sx / n, sy / n});
            lastX = sx;
            lastY = sy;
            lastN = n;
            travelled = 0.0;
            sx = sy = 0.0;
            n = 0;
        }
    }
}
}  // namespace

Polyline sampleLine(const std::vector<EdgePiece>& all, const std::vector<int>& pieces,
                    const RadialFrame& frame, double k1, double k2, double step) {
    // The straightened line's direction orders the pieces and their points.
    Polyline joined;
    double length = 0.0;
    for (int i : pieces) {
        const Polyline s = straightened(all[i].points, frame, k1, k2);
        joined.insert(joined.end(), s.begin(), s.end());
        length += all[i].length;
    }
    const StraightFit line = fitStraight(joined);
    std::vector<std::pair<double, int>> order;
    for (int i : pieces) {
        const PlanePoint c = frame.straighten(all[i].points[all[i].points.size() / 2], k1, k2);
        order.push_back({line.along(c.x, c.y), i});
    }
    std::sort(order.begin(), order.end());
    const double runLength = std::min(step, length / (kMinPointsPerLine + 1));
    Polyline out;
    for (const auto& entry : order) {
        const Polyline& points = all[entry.second].points;
        const PlanePoint a = frame.straighten(points.front(), k1, k2);
        const PlanePoint b = frame.straighten(points.back(), k1, k2);
        if (line.along(a.x, a.y) <= line.along(b.x, b.y)) {
            appendRuns(points, runLength, out);
        } else {
            appendRuns(Polyline(points.rbegin(), points.rend()), runLength, out);
        }
    }
    return out;
}
