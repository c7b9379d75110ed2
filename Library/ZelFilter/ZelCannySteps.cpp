#include "ZelCannySteps.h"

#include <cmath>

#include "ZelBand.h"

namespace {

// Along x when the gradient leans that way (ties go along x).
inline bool acrossIsX(float gx, float gy) { return std::fabs(gx) >= std::fabs(gy); }

void mp_classes(const FloatImageZel& magnitude, const FloatImageZel& dx, const FloatImageZel& dy,
                float low, float high, unsigned char* classes, long first, long last) {
    const long width = magnitude.width();
    const long height = magnitude.height();
    for (long y = first; y <= last; ++y) {
        unsigned char* out = classes + y * width;
        if (y == 0 || y == height - 1) {
            for (long x = 0; x < width; ++x) out[x] = kZelEdgeNone;
            continue;
        }
        const float* m = magnitude.row(y);
        const float* above = magnitude.row(y - 1);
        const float* below = magnitude.row(y + 1);
        const float* gx = dx.row(y);
        const float* gy = dy.row(y);
        out[0] = kZelEdgeNone;
        out[width - 1] = kZelEdgeNone;
        for (long x = 1; x < width - 1; ++x) {
            const float v = m[x];
            unsigned char c = kZelEdgeNone;
            if (v > low) {
                const bool alongX = acrossIsX(gx[x], gy[x]);
                const float a = alongX ? m[x - 1] : above[x];
                const float b = alongX ? m[x + 1] : below[x];
                if (a < v && v >= b) c = v > high ? kZelEdgeStrong : kZelEdgeWeak;
            }
            out[x] = c;
        }
    }
}

}  // namespace

bool zelNonMaximumClasses(const FloatImageZel& magnitude, const FloatImageZel& dx,
                          const FloatImageZel& dy, float low, float high,
                          std::vector<unsigned char>& classes) {
    if (!magnitude.hasPixels() || !dx.hasPixels() || !dy.hasPixels() || !magnitude.sameSize(dx) ||
        !magnitude.sameSize(dy))
        return false;
    classes.resize(static_cast<size_t>(magnitude.count()));
    unsigned char* out = classes.data();
    zelForEachBand(magnitude.height(), [&](long first, long last) {
        mp_classes(magnitude, dx, dy, low, high, out, first, last);
    });
    return true;
}

void zelHysteresis(const std::vector<unsigned char>& classes, int width, int height,
                   std::vector<unsigned char>& map) {
    const long count = static_cast<long>(width) * height;
    map.assign(static_cast<size_t>(count), 0);
    // Only interior pixels have a class, so every neighbour looked at is inside.
    const long neighbours[8] = {-width - 1, -width, -width + 1, -1, 1, width - 1, width, width + 1};
    std::vector<long> stack;
    for (long i = 0; i < count; ++i) {
        if (classes[i] != kZelEdgeStrong || map[i]) continue;
        map[i] = 1;
        stack.push_back(i);
        while (!stack.empty()) {
            const long p = stack.back();
            stack.pop_back();
            for (long step : neighbours) {
                const long q = p + step;
                if (classes[q] != kZelEdgeNone && !map[q]) {
                    map[q] = 1;
                    stack.push_back(q);
                }
            }
        }
    }
}

void zelEdgeSubPixelPoints(ZelEdges& edges) {
    const long width = edges.width;
    const long height = edges.height;
    edges.pointOf.assign(static_cast<size_t>(width * height), -1);
    // Points per row first, so that every band knows where its rows' points go.
    std::vector<long> start(static_cast<size_t>(height) + 1, 0);
    zelForEachBand(height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const unsigned char* row = edges.map.data() + y * width;
            long n = 0;
            for (long x = 0; x < width; ++x) n += row[x];
            start[y + 1] = n;
        }
    });
    for (long y = 0; y < height; ++y) start[y + 1] += start[y];
    edges.points.resize(static_cast<size_t>(start[height]));
    zelForEachBand(height, [&](long first, long last) {
        for (long y = first; y <= last; ++y) {
            const unsigned char* row = edges.map.data() + y * width;
            long next = start[y];
            for (long x = 0; x < width; ++x) {
                if (!row[x]) continue;
                ZelEdgePoint& p = edges.points[static_cast<size_t>(next)];
                const float gx = edges.dx.at(x, y);
                const float gy = edges.dy.at(x, y);
                const float m = edges.magnitude.at(x, y);
                const bool alongX = acrossIsX(gx, gy);
                const float a =
                    alongX ? edges.magnitude.at(x - 1, y) : edges.magnitude.at(x, y - 1);
                const float b =
                    alongX ? edges.magnitude.at(x + 1, y) : edges.magnitude.at(x, y + 1);
                // a < m >= b makes the curvature negative and delta at most 1/2;
                // rounding can leave it 0 when a is a hair below m.
                const float curvature = a - 2.0f * m + b;
                const float delta = curvature < 0.0f ? (a - b) / (2.0f * curvature) : 0.0f;
                p.x = static_cast<float>(x) + (alongX ? delta : 0.0f);
                p.y = static_cast<float>(y) + (alongX ? 0.0f : delta);
                p.dx = gx;
                p.dy = gy;
                p.magnitude = m;
                p.column = static_cast<int>(x);
                p.row = static_cast<int>(y);
                edges.pointOf[static_cast<size_t>(y * width + x)] = static_cast<int>(next);
                ++next;
            }
        }
    });
}
