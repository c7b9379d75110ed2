// Canny edges into smooth pieces.
#include "EdgePieces.h"

#include <algorithm>
#include <cmath>

#include "EdgeChains.h"
#include "PieceFit.h"
#include "ZelCanny.h"

namespace {
const double kSqrtTwoPi = 2.5066282746310002;
// Median |second difference| of white noise is 0.6745 * sqrt(6) sigma.
const double kSecondDifferenceMedian = 1.6521;
// Normalised Sobel after a Gaussian pre-blur of sigma s passes about
// 0.433 / (2 sqrt(pi) s) of the pixel noise into the gradient.
const double kSobelNoiseGain = 0.433;
const double kPi = 3.14159265358979323846;
// Every how many points a piece's blur and surroundings are sampled.
const std::size_t kSampleEvery = 3;
// Edge dropped at each end of a piece, in pixels and per pixel of the
// pre-blur's sigma: corners and junctions round the ends.
const double kEndTrim = 2.0;
const double kEndTrimPerSigma = 2.0;
// Points this near the frame's border (plus so much per sigma) are left out.
const double kBorderMargin = 2.0;
const double kBorderPerSigma = 2.0;

float bilinear(const FloatImageZel& image, double x, double y) {
    x = std::clamp(x, 0.0, image.width() - 1.0);
    y = std::clamp(y, 0.0, image.height() - 1.0);
    const long x0 = std::min(static_cast<long>(x), static_cast<long>(image.width() - 2));
    const long y0 = std::min(static_cast<long>(y), static_cast<long>(image.height() - 2));
    const double fx = x - x0, fy = y - y0;
    if (x0 < 0 || y0 < 0) return image.at(std::max(0L, x0), std::max(0L, y0));
    const double top = image.at(x0, y0) * (1.0 - fx) + image.at(x0 + 1, y0) * fx;
    const double bottom = image.at(x0, y0 + 1) * (1.0 - fx) + image.at(x0 + 1, y0 + 1) * fx;
    return static_cast<float>(top * (1.0 - fy) + bottom * fy);
}

double median(std::vector<double>& values) {
    if (values.empty()) return 0.0;
    const std::size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + middle, values.end());
    return values[middle];
}

// The blur sigma of the edge: a step of contrast C blurred with sigma s
// peaks at a gradient of C / (sqrt(2 pi) s); the pre-blur is taken off.
double edgeBlur(const FloatImageZel& luminance, const ZelEdges& edges, const EdgeChain& chain,
                std::size_t first, std::size_t last, const LineDetectSettings& settings) {
    const double reach = std::max(6.0, 2.5 * settings.maxBlur);
    const double preBlur = double(settings.cannySigma) * settings.cannySigma;
    std::vector<double> sigmas;
    for (std::size_t i = first; i <= last; i += kSampleEvery) {
        const ZelEdgePoint& p = edges.points[chain[i]];
        if (p.magnitude <= 0.0f) continue;
        const double nx = p.dx / p.magnitude, ny = p.dy / p.magnitude;
        const double contrast = std::fabs(bilinear(luminance, p.x + reach * nx, p.y + reach * ny) -
                                          bilinear(luminance, p.x - reach * nx, p.y - reach * ny));
        const double total = contrast / (kSqrtTwoPi * p.magnitude);
        sigmas.push_back(std::sqrt(std::max(0.0, total * total - preBlur)));
    }
    return median(sigmas);
}

// Share of edge pixels on short normals beside the piece, its own pixels
// (within 1.5 px) left out.
double edgeShare(const ZelEdges& edges, const EdgeChain& chain, std::size_t first, std::size_t last,
                 double band) {
    long hits = 0, looks = 0;
    for (std::size_t i = first; i <= last; i += kSampleEvery) {
        const ZelEdgePoint& p = edges.points[chain[i]];
        if (p.magnitude <= 0.0f) continue;
        const double nx = p.dx / p.magnitude, ny = p.dy / p.magnitude;
        for (double d = 2.0; d <= band; d += 1.0) {
            for (int side : {-1, 1}) {
                const long x = std::lround(p.x + side * d * nx),
                           y = std::lround(p.y + side * d * ny);
                if (x < 0 || y < 0 || x >= edges.width || y >= edges.height) continue;
                ++looks;
                hits += edges.isEdge(x, y) ? 1 : 0;
            }
        }
    }
    return looks ? double(hits) / double(looks) : 0.0;
}

struct Splitter {
    const FloatImageZel& luminance;
    const ZelEdges& edges;
    const LineDetectSettings& settings;
    double minCurvatureRadius;
    FramePieces& out;

    void keep(const EdgeChain& chain, const Polyline& points, std::size_t first, std::size_t last,
              const PieceFit& fit) {
        EdgePiece piece;
        piece.points.assign(points.begin() + first, points.begin() + last + 1);
        piece.length = fit.length;
        piece.curvature = fit.curvature;
        piece.blur = edgeBlur(luminance, edges, chain, first, last, settings);
        piece.edgeShare = edgeShare(edges, chain, first, last, settings.textureBand);
        if (fit.curvature * minCurvatureRadius > 1.0) {
            if (fit.length >= settings.minLineLength)
                out.tooCurved.push_back(std::move(piece));
            else
                ++out.shortPieces;
            return;
        }
        out.pieces.push_back(std::move(piece));
    }

    // Cuts the chain's points until each part fits; the parts kept lose a
    // little edge at each end.
    void split(const EdgeChain& chain, const Polyline& points) {
        std::vector<double> travelled(points.size(), 0.0);
        for (std::size_t i = 1; i < points.size(); ++i)
            travelled[i] = travelled[i - 1] +
                           std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
        const double trim = kEndTrim + kEndTrimPerSigma * settings.cannySigma;
        std::vector<std::pair<std::size_t, std::size_t>> pending = {{0, points.size() - 1}};
        while (!pending.empty()) {
            auto [first, last] = pending.back();
            pending.pop_back();
            if (last < first + 2 ||
                travelled[last] - travelled[first] < settings.minPieceLength + 2.0 * trim) {
                ++out.shortPieces;
                continue;
            }
            const PieceFit fit = fitPiece(points.data(), first, last);
            if (fit.maxResidual > settings.splitTolerance) {
                const std::size_t cut = farthestFromChord(points, first, last);
                pending.push_back({cut + 1, last});
                pending.push_back({first, cut});
                continue;
            }
            // Corners and junctions round the last pixels of a piece's ends.
            const double start = travelled[first], end = travelled[last];
            while (travelled[first] - start < trim) ++first;
            while (end - travelled[last] < trim) --last;
            keep(chain, points, first, last, fitPiece(points.data(), first, last));
        }
    }

    static std::size_t farthestFromChord(const Polyline& points, std::size_t first,
                                         std::size_t last) {
        const double ax = points[first].x, ay = points[first].y;
        const double cx = points[last].x - ax, cy = points[last].y - ay;
        const double chord = std::max(std::hypot(cx, cy), 1e-9);
        std::size_t cut = (first + last) / 2;
        double far = -1.0;
        for (std::size_t i = first + 1; i < last; ++i) {
            const double d = std::fabs((points[i].x - ax) * cy - (points[i].y - ay) * cx) / chord;
            if (d > far) {
                far = d;
                cut = i;
            }
        }
        return cut;
    }
};
}  // namespace

float estimateNoise(const FloatImageZel& luminance) {
    std::vector<double> differences;
    const long w = luminance.width(), h = luminance.height();
    const long stepY = std::max(1L, h / 200), stepX = std::max(1L, w / 400);
    for (long y = 1; y < h - 1; y += stepY) {
        const float* row = luminance.row(y);
        for (long x = 1; x < w - 1; x += stepX)
            differences.push_back(std::fabs(double(row[x - 1]) - 2.0 * row[x] + row[x + 1]));
    }
    return static_cast<float>(median(differences) / kSecondDifferenceMedian);
}

bool findEdgePieces(const FloatImageZel& luminance, const LineDetectSettings& settings,
                    ZelEdges& edges, FramePieces& out) {
    out = FramePieces();
    if (!luminance.hasPixels()) return false;
    out.width = luminance.width();
    out.height = luminance.height();
    // Too small for a 3x3 gradient: no edges, which is no failure.
    if (out.width < 3 || out.height < 3) return true;
    const double gradientNoise = estimateNoise(luminance) * kSobelNoiseGain /
                                 (2.0 * std::sqrt(kPi) * std::max(0.5f, settings.cannySigma));
    ZelCannySettings canny;
    canny.sigma = settings.cannySigma;
    canny.high = std::max(settings.highFloor,
                          static_cast<float>(settings.highNoiseMultiple * gradientNoise));
    canny.low =
        std::max(settings.lowFloor, static_cast<float>(settings.lowNoiseMultiple * gradientNoise));
    canny.low = std::min(canny.low, canny.high);
    if (!zelCanny(luminance, canny, edges)) return false;
    const double halfDiagonal = 0.5 * std::hypot(double(out.width), double(out.height));
    Splitter splitter{luminance, edges, settings, settings.minRadiusInHalfDiagonals * halfDiagonal,
                      out};
    Polyline points;
    // Near the frame's border the blur sees replicated pixels, which pulls
    // edges: chains are cut where they come that near.
    const double border = kBorderMargin + kBorderPerSigma * settings.cannySigma;
    auto inside = [&](const ZelEdgePoint& p) {
        return p.x >= border && p.y >= border && p.x <= out.width - 1 - border &&
               p.y <= out.height - 1 - border;
    };
    EdgeChain run;
    auto flush = [&] {
        if (run.size() < 3) {
            if (!run.empty()) ++out.shortPieces;
        } else {
            points.resize(run.size());
            for (std::size_t i = 0; i < run.size(); ++i)
                points[i] = {edges.points[run[i]].x, edges.points[run[i]].y};
            splitter.split(run, points);
        }
        run.clear();
    };
    for (const EdgeChain& chain : chainEdges(edges)) {
        for (int i : chain) {
            if (inside(edges.points[i]))
                run.push_back(i);
            else
                flush();
        }
        flush();
    }
    return true;
}
