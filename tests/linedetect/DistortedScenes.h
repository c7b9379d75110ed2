// Pictures of straight-edged shapes drawn through a known radial model, for
// the detector's tests. A scene is a list of shapes in straightened image
// coordinates (pixels, y down); the picture's pixel d shows the scene at
// q = F(d), F the model of RadialModel.h, averaged over 4 x 4 samples per
// pixel, then blurred and given noise as asked. The straight edges of the
// shapes are the truth the detected points are checked against: F of a
// detected point must lie on one of them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "FloatImageZel.h"
#include "RadialModel.h"
#include "ZelGaussianBlur.h"
#include "ZelRandom.h"
#include "ZelRandomDistributions.h"

struct Segment {
    PlanePoint a, b;
};

struct TestScene {
    int samples = 4;  // per pixel each way (fewer where positions are not measured)
    int width = 960;
    int height = 540;
    double k1 = 0.0;
    double k2 = 0.0;
    float background = 0.2f;
    // Value of the scene at a straightened point, or a negative number for
    // the background.
    std::vector<std::function<float(double, double)>> shapes;
    std::vector<Segment> edges;  // the straight edges of the shapes

    // A filled convex polygon (corners in order) of this value.
    void polygon(const std::vector<PlanePoint>& corners, float value) {
        shapes.push_back([corners, value](double x, double y) {
            const size_t n = corners.size();
            double sign = 0.0;
            for (size_t i = 0; i < n; ++i) {
                const PlanePoint& a = corners[i];
                const PlanePoint& b = corners[(i + 1) % n];
                const double c = (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
                if (sign == 0.0)
                    sign = c;
                else if (c * sign < 0.0)
                    return -1.0f;
            }
            return value;
        });
        for (size_t i = 0; i < corners.size(); ++i)
            edges.push_back({corners[i], corners[(i + 1) % corners.size()]});
    }
    void rectangle(double x0, double y0, double x1, double y1, float value) {
        polygon({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, value);
    }
    // A disc: a curved edge (not in `edges`).
    void disc(double cx, double cy, double radius, float value) {
        shapes.push_back([=](double x, double y) {
            return (x - cx) * (x - cx) + (y - cy) * (y - cy) <= radius * radius ? value : -1.0f;
        });
    }

    // A field of irregular blobs (smooth value noise cut at three levels),
    // cells of about `cell` pixels: foliage, gravel.
    void blobs(double cell, uint32_t seed) {
        shapes.push_back([cell, seed](double x, double y) {
            auto hash = [seed](long i, long j) {
                uint32_t h = static_cast<uint32_t>(i) * 374761393u +
                             static_cast<uint32_t>(j) * 668265263u + seed * 2246822519u;
                h = (h ^ (h >> 13)) * 1274126177u;
                return ((h ^ (h >> 16)) & 0xffff) / 65535.0;
            };
            const double u = x / cell, v = y / cell;
            const long i = static_cast<long>(std::floor(u)), j = static_cast<long>(std::floor(v));
            const double fx = u - i, fy = v - j;
            const double sx = fx * fx * (3 - 2 * fx), sy = fy * fy * (3 - 2 * fy);
            const double n = (hash(i, j) * (1 - sx) + hash(i + 1, j) * sx) * (1 - sy) +
                             (hash(i, j + 1) * (1 - sx) + hash(i + 1, j + 1) * sx) * sy;
            return n < 0.35 ? 0.1f : n < 0.5 ? 0.4f : n < 0.65 ? 0.65f : 0.9f;
        });
    }

    float valueAt(double x, double y) const {
        float v = background;
        for (const auto& shape : shapes) {
            const float s = shape(x, y);
            if (s >= 0.0f) v = s;
        }
        return v;
    }

    FloatImageZel draw(float blur = 0.7f, double noise = 0.0, unsigned seed = 1) const {
        FloatImageZel picture(width, height);
        const RadialFrame frame = RadialFrame::of(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                double sum = 0.0;
                for (int j = 0; j < samples; ++j)
                    for (int i = 0; i < samples; ++i) {
                        const PlanePoint q = frame.straighten(
                            {x + (i + 0.5) / samples - 0.5, y + (j + 0.5) / samples - 0.5}, k1, k2);
                        sum += valueAt(q.x, q.y);
                    }
                picture.row(y)[x] = static_cast<float>(sum / (samples * samples));
            }
        FloatImageZel out;
        if (blur > 0.0f)
            zelGaussianBlurExact(picture, out, blur);
        else
            picture.copyTo(out);
        ZelPcg32 random(seed);
        for (long i = 0; noise > 0.0 && i < out.count(); ++i)
            out.data()[i] += static_cast<float>(noise * zelNormal(random));
        return out;
    }

    // Distance from a straightened point to the nearest true edge (as a
    // straight segment).
    double distanceToEdges(const PlanePoint& q) const {
        double best = 1e30;
        for (const Segment& s : edges) {
            const double dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
            const double t = std::clamp(
                ((q.x - s.a.x) * dx + (q.y - s.a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
            best = std::min(best, std::hypot(q.x - s.a.x - t * dx, q.y - s.a.y - t * dy));
        }
        return best;
    }
};

// Largest displacement, in pixels, between two models over the points within
// 0.7 of the half-diagonal from the centre (the evaluation's measure).
inline double modelDisplacement(int width, int height, double k1a, double k2a, double k1b,
                                double k2b) {
    const double r = 0.5 * std::hypot(double(width), double(height));
    double worst = 0.0;
    for (int i = 0; i <= 700; ++i) {
        const double rho = i / 1000.0;
        const double rho2 = rho * rho;
        worst =
            std::max(worst, r * rho * std::fabs((k1a - k1b) * rho2 + (k2a - k2b) * rho2 * rho2));
    }
    return worst;
}
