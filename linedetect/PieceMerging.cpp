// Joining pieces that are one straight edge once straightened.
#include "PieceMerging.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {
const double kPi = 3.14159265358979323846;
const double kMaxMergeDegrees = 3.0;
// Pieces may overlap this much along the line (chains cut at a junction).
const double kMaxOverlap = 3.0;
// Allowed extra distance per pixel of gap: the model's own error.
const double kDistancePerGap = 0.002;

// Sums for a straight-line fit that add when pieces join.
struct LineSums {
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    void add(double px, double py) {
        n += 1.0;
        x += px;
        y += py;
        xx += px * px;
        xy += px * py;
        yy += py * py;
    }
    void add(const LineSums& o) {
        n += o.n;
        x += o.x;
        y += o.y;
        xx += o.xx;
        xy += o.xy;
        yy += o.yy;
    }
    double rms() const {
        if (n < 2.0) return 0.0;
        const double mx = x / n, my = y / n;
        const double cxx = xx / n - mx * mx, cxy = xy / n - mx * my, cyy = yy / n - my * my;
        const double half = 0.5 * (cxx - cyy);
        const double smaller = 0.5 * (cxx + cyy) - std::sqrt(half * half + cxy * cxy);
        return smaller > 0.0 ? std::sqrt(smaller) : 0.0;
    }
};

struct Candidate {
    double gap;
    int a, b;
    bool operator<(const Candidate& o) const {
        return std::tie(gap, a, b) < std::tie(o.gap, o.a, o.b);
    }
};

int root(std::vector<int>& parent, int i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
}

// The gap between two pieces if they may join, or a negative number.
double joinGap(const StraightFit& a, const StraightFit& b, const Polyline& pa, const Polyline& pb,
               const LineDetectSettings& settings, double maxGap) {
    const double cosine = std::fabs(a.dx * b.dx + a.dy * b.dy);
    if (cosine < std::cos(kMaxMergeDegrees * kPi / 180.0)) return -1.0;
    // b's extent along a's direction.
    const double b0 = a.along(pb.front().x, pb.front().y), b1 = a.along(pb.back().x, pb.back().y);
    const double low = std::min(b0, b1), high = std::max(b0, b1);
    const double overlap = std::min(a.high, high) - std::max(a.low, low);
    if (overlap > kMaxOverlap) return -1.0;
    const double gap = std::max(0.0, -overlap);
    if (gap > maxGap) return -1.0;
    const double tolerance = settings.mergeDistance + kDistancePerGap * gap;
    for (const PlanePoint* p : {&pb.front(), &pb.back()})
        if (std::fabs(a.across(p->x, p->y)) > tolerance) return -1.0;
    for (const PlanePoint* p : {&pa.front(), &pa.back()})
        if (std::fabs(b.across(p->x, p->y)) > tolerance) return -1.0;
    return gap;
}

std::vector<Candidate> candidatePairs(const std::vector<Polyline>& corrected,
                                      const std::vector<StraightFit>& fits,
                                      const LineDetectSettings& settings, double maxGap) {
    // Sorted by direction (0 .. pi, the first few degrees repeated past pi),
    // so only pieces of nearly the same direction are compared.
    const double window = kMaxMergeDegrees * kPi / 180.0;
    std::vector<std::pair<double, int>> byAngle;
    for (int i = 0; i < static_cast<int>(fits.size()); ++i) {
        double angle = std::atan2(fits[i].dy, fits[i].dx);
        if (angle < 0.0) angle += kPi;
        if (angle >= kPi) angle -= kPi;
        byAngle.push_back({angle, i});
        if (angle < window) byAngle.push_back({angle + kPi, i});
    }
    std::sort(byAngle.begin(), byAngle.end());
    std::vector<Candidate> candidates;
    for (std::size_t s = 0; s < byAngle.size(); ++s) {
        for (std::size_t t = s + 1;
             t < byAngle.size() && byAngle[t].first - byAngle[s].first <= window; ++t) {
            const int a = std::min(byAngle[s].second, byAngle[t].second);
            const int b = std::max(byAngle[s].second, byAngle[t].second);
            if (a == b) continue;
            const double gap =
                joinGap(fits[a], fits[b], corrected[a], corrected[b], settings, maxGap);
            if (gap >= 0.0) candidates.push_back({gap, a, b});
        }
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end(),
                                 [](const Candidate& x, const Candidate& y) {
                                     return x.a == y.a && x.b == y.b;
                                 }),
                     candidates.end());
    return candidates;
}
}  // namespace

StraightFit fitStraight(const Polyline& points) {
    StraightFit fit;
    LineSums sums;
    for (const PlanePoint& p : points) sums.add(p.x, p.y);
    if (sums.n < 1.0) return fit;
    fit.cx = sums.x / sums.n;
    fit.cy = sums.y / sums.n;
    const double cxx = sums.xx / sums.n - fit.cx * fit.cx;
    const double cxy = sums.xy / sums.n - fit.cx * fit.cy;
    const double cyy = sums.yy / sums.n - fit.cy * fit.cy;
    const double angle = 0.5 * std::atan2(2.0 * cxy, cxx - cyy);
    fit.dx = std::cos(angle);
    fit.dy = std::sin(angle);
    fit.low = fit.high = fit.along(points.front().x, points.front().y);
    for (const PlanePoint& p : points) {
        const double t = fit.along(p.x, p.y);
        fit.low = std::min(fit.low, t);
        fit.high = std::max(fit.high, t);
    }
    fit.rms = sums.rms();
    return fit;
}

Polyline straightened(const Polyline& points, const RadialFrame& frame, double k1, double k2) {
    Polyline out;
    out.reserve(points.size());
    for (const PlanePoint& p : points) out.push_back(frame.straighten(p, k1, k2));
    return out;
}

std::vector<std::vector<int>> mergePieces(const std::vector<EdgePiece>& pieces,
                                          const RadialFrame& frame, double k1, double k2,
                                          const LineDetectSettings& settings) {
    const int count = static_cast<int>(pieces.size());
    std::vector<Polyline> corrected(count);
    std::vector<StraightFit> fits(count);
    std::vector<LineSums> sums(count);
    for (int i = 0; i < count; ++i) {
        corrected[i] = straightened(pieces[i].points, frame, k1, k2);
        fits[i] = fitStraight(corrected[i]);
        // Relative to the centre, so the sums keep their precision.
        for (const PlanePoint& p : corrected[i])
            sums[i].add(p.x - frame.centreX, p.y - frame.centreY);
    }
    const double maxGap = settings.maxGapInDiagonals * 2.0 * frame.halfDiagonal;
    std::vector<int> parent(count);
    std::iota(parent.begin(), parent.end(), 0);
    for (const Candidate& c : candidatePairs(corrected, fits, settings, maxGap)) {
        const int a = root(parent, c.a), b = root(parent, c.b);
        if (a == b) continue;
        LineSums joined = sums[a];
        joined.add(sums[b]);
        if (joined.rms() > settings.lineTolerance) continue;
        const int keep = std::min(a, b), drop = std::max(a, b);
        parent[drop] = keep;
        sums[keep] = joined;
    }
    std::vector<std::vector<int>> groups;
    std::vector<int> groupOf(count, -1);
    for (int i = 0; i < count; ++i) {
        const int r = root(parent, i);
        if (groupOf[r] < 0) {
            groupOf[r] = static_cast<int>(groups.size());
            groups.emplace_back();
        }
        groups[groupOf[r]].push_back(i);
    }
    return groups;
}
