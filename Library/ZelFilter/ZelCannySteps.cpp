#include "ZelCannySteps.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "ZelBand.h"
#include "ZelCannyRows.h"
#include "ZelGradientRows.h"

namespace {

// Along x when the gradient leans that way (ties go along x).
inline bool acrossIsX(float gx, float gy) { return std::fabs(gx) >= std::fabs(gy); }

// Rows y - 1, y and y + 1 of the gradient in a ring of three, computed as
// the band moves down (each row from the same inputs whatever the band).
class GradientWindow {
  public:
    GradientWindow(const FloatImageZel& in, const ZelGradientWeights& w)
        : in_(in), w_(w), width_(in.width()), store_(static_cast<size_t>(width_) * 9 + 4) {
        rowOf_[0] = rowOf_[1] = rowOf_[2] = -1;
    }
    // The slot (0..2) holding row r, computed if it is not there.
    int slot(long r) {
        const int s = static_cast<int>(r % 3);
        if (rowOf_[s] != r) {
            zelGradientRow(in_, w_, r, dx(s), dy(s), magnitude(s), scratch(),
                           scratch() + width_ + 2);
            rowOf_[s] = r;
        }
        return s;
    }
    float* dx(int s) { return store_.data() + (3 * s) * width_; }
    float* dy(int s) { return store_.data() + (3 * s + 1) * width_; }
    float* magnitude(int s) { return store_.data() + (3 * s + 2) * width_; }

  private:
    float* scratch() { return acrossDown_.data(); }

    const FloatImageZel& in_;
    ZelGradientWeights w_;
    long width_;
    std::vector<float> store_;
    std::vector<float> acrossDown_ = std::vector<float>(static_cast<size_t>(2 * width_ + 4));
    long rowOf_[3];
};

// The point of a maximum at (x, y): the parabola's peak across the edge.
ZelEdgePoint pointAt(long x, long y, float gx, float gy, float m, float a, float b, bool alongX) {
    // a < m >= b makes the curvature negative and delta at most 1/2;
    // rounding can leave it 0 when a is a hair below m.
    const float curvature = a - 2.0f * m + b;
    const float delta = curvature < 0.0f ? (a - b) / (2.0f * curvature) : 0.0f;
    ZelEdgePoint p;
    p.x = static_cast<float>(x) + (alongX ? delta : 0.0f);
    p.y = static_cast<float>(y) + (alongX ? 0.0f : delta);
    p.dx = gx;
    p.dy = gy;
    p.magnitude = m;
    p.column = static_cast<int>(x);
    p.row = static_cast<int>(y);
    return p;
}

void mp_classes(const FloatImageZel& in, const ZelGradientWeights& w, float low, float high,
                unsigned char* classes, std::vector<ZelEdgePoint>& candidates, long first,
                long last) {
    candidates.clear();
    if (first > last) return;
    const long width = in.width();
    const long height = in.height();
    GradientWindow window(in, w);
    for (long y = first; y <= last; ++y) {
        unsigned char* out = classes + y * width;
        std::memset(out, kZelEdgeNone, static_cast<size_t>(width));
        if (y == 0 || y == height - 1) continue;
        const float* above = window.magnitude(window.slot(y - 1));
        const float* below = window.magnitude(window.slot(y + 1));
        const int s = window.slot(y);
        const float* m = window.magnitude(s);
        const float* gx = window.dx(s);
        const float* gy = window.dy(s);
        // Only pixels above the low threshold can be candidates.
        for (long x = zelNextAbove(m, 1, width - 1, low); x < width - 1;
             x = zelNextAbove(m, x + 1, width - 1, low)) {
            const float v = m[x];
            const bool alongX = acrossIsX(gx[x], gy[x]);
            const float a = alongX ? m[x - 1] : above[x];
            const float b = alongX ? m[x + 1] : below[x];
            if (!(a < v && v >= b)) continue;
            out[x] = v > high ? kZelEdgeStrong : kZelEdgeWeak;
            candidates.push_back(pointAt(x, y, gx[x], gy[x], v, a, b, alongX));
        }
    }
}

}  // namespace

int ZelEdges::pointAt(long x, long y) const {
    if (x < 0 || y < 0 || x >= width || y >= height || !isEdge(x, y)) return -1;
    const auto begin = points.begin() + rowStart[static_cast<size_t>(y)];
    const auto end = points.begin() + rowStart[static_cast<size_t>(y) + 1];
    const auto found = std::lower_bound(
        begin, end, x, [](const ZelEdgePoint& p, long column) { return p.column < column; });
    return found != end && found->column == x ? static_cast<int>(found - points.begin()) : -1;
}

bool zelNonMaximumClasses(const FloatImageZel& in, ZelGradientOperator op, float low, float high,
                          std::vector<unsigned char>& classes,
                          std::vector<std::vector<ZelEdgePoint>>& candidates) {
    if (!in.hasPixels()) return false;
    classes.resize(static_cast<size_t>(in.count()));
    candidates.resize(static_cast<size_t>(in.height()));
    for (std::vector<ZelEdgePoint>& band : candidates) band.clear();
    unsigned char* out = classes.data();
    const ZelGradientWeights w = zelGradientWeights(op);
    zelForEachBand(in.height(), [&](long first, long last) {
        if (first <= last) mp_classes(in, w, low, high, out, candidates[first], first, last);
    });
    return true;
}

void zelHysteresis(std::vector<unsigned char>& classes, int width, const std::vector<long>& seeds) {
    unsigned char* c = classes.data();
    // Only interior pixels have a class, so every neighbour looked at is inside.
    const long neighbours[8] = {-width - 1, -width, -width + 1, -1, 1, width - 1, width, width + 1};
    std::vector<long> stack;
    for (long seed : seeds) {
        if (c[seed] != kZelEdgeStrong) continue;
        c[seed] = kZelEdgeKept;
        stack.push_back(seed);
        while (!stack.empty()) {
            const long p = stack.back();
            stack.pop_back();
            for (long step : neighbours) {
                const long q = p + step;
                if (c[q] == kZelEdgeWeak || c[q] == kZelEdgeStrong) {
                    c[q] = kZelEdgeKept;
                    stack.push_back(q);
                }
            }
        }
    }
}

void zelKeepEdges(ZelEdges& edges) {
    const long width = edges.width;
    const long height = edges.height;
    std::vector<long> seeds;
    for (const std::vector<ZelEdgePoint>& band : edges.candidates)
        for (const ZelEdgePoint& p : band)
            if (edges.classes[static_cast<size_t>(p.row * width + p.column)] == kZelEdgeStrong)
                seeds.push_back(p.row * width + p.column);
    zelHysteresis(edges.classes, edges.width, seeds);
    // The bands' candidates are in row order and so, band after band, are the points.
    edges.map.assign(static_cast<size_t>(width * height), 0);
    edges.points.clear();
    edges.rowStart.assign(static_cast<size_t>(height) + 1, 0);
    for (const std::vector<ZelEdgePoint>& band : edges.candidates)
        for (const ZelEdgePoint& p : band) {
            const size_t pixel = static_cast<size_t>(p.row * width + p.column);
            if (edges.classes[pixel] != kZelEdgeKept) continue;
            edges.map[pixel] = 1;
            edges.points.push_back(p);
            ++edges.rowStart[static_cast<size_t>(p.row) + 1];
        }
    for (long y = 0; y < height; ++y) edges.rowStart[y + 1] += edges.rowStart[y];
}
