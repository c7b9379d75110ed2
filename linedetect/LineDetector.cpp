// From pieces to lines: model, merge, tests, sampling.
#include "LineDetector.h"

#include <algorithm>
#include <cmath>

#include "LineSampling.h"
#include "PieceFit.h"
#include "PieceMerging.h"
#include "RadialConsensus.h"
#include "RadialModel.h"

namespace {
// Parallel lines within this many degrees may be a cluster.
const double kClusterDegrees = 3.0;
const double kPi = 3.14159265358979323846;
// A cluster is this many close parallel lines or more.
const std::size_t kClusterSize = 3;
const double kBendFactor = 2.5;

// Two straight lines within `distance` of each other, parallel within
// kClusterDegrees, side by side along at least half the shorter.
bool closeParallels(const StraightFit& a, const StraightFit& b, double distance) {
    if (std::fabs(a.dx * b.dx + a.dy * b.dy) < std::cos(kClusterDegrees * kPi / 180.0) ||
        std::fabs(a.across(b.cx, b.cy)) > distance)
        return false;
    const double b0 = a.along(b.cx + b.low * b.dx, b.cy + b.low * b.dy);
    const double b1 = a.along(b.cx + b.high * b.dx, b.cy + b.high * b.dy);
    const double overlap = std::min(a.high, std::max(b0, b1)) - std::max(a.low, std::min(b0, b1));
    return overlap >= 0.5 * std::min(a.high - a.low, b.high - b.low);
}

struct CandidateLine {
    int frame = 0;
    std::vector<int> pieces;  // into that frame's pieces
    StraightnessMoments moments;
    double length = 0.0;
    double blur = 0.0;
    double edgeShare = 0.0;
};

struct Selection {
    const std::vector<FramePieces>& frames;
    const LineDetectSettings& settings;
    RadialFrame geometry;
    double k1 = 0.0, k2 = 0.0;
    LineDetection result;

    std::vector<CandidateLine> mergeAll() const {
        std::vector<CandidateLine> lines;
        for (int f = 0; f < static_cast<int>(frames.size()); ++f) {
            const std::vector<EdgePiece>& pieces = frames[f].pieces;
            for (std::vector<int>& group : mergePieces(pieces, geometry, k1, k2, settings)) {
                CandidateLine line;
                line.frame = f;
                for (int i : group) {
                    const EdgePiece& piece = pieces[i];
                    for (const PlanePoint& p : piece.points) line.moments.add(geometry, p);
                    line.length += piece.length;
                    line.blur += piece.blur * piece.length;
                    line.edgeShare += piece.edgeShare * piece.length;
                }
                line.blur /= std::max(line.length, 1e-9);
                line.edgeShare /= std::max(line.length, 1e-9);
                line.pieces = std::move(group);
                lines.push_back(std::move(line));
            }
        }
        return lines;
    }

    bool usable(const CandidateLine& line) const {
        return line.length >= settings.minLineLength && line.blur <= settings.maxBlur &&
               line.edgeShare <= settings.maxEdgeShare;
    }

    void estimate(const std::vector<StraightnessMoments>& edges, double tolerance) {
        if (edges.empty()) return;
        const RadialEstimate e = estimateRadialModel(geometry, edges, tolerance);
        k1 = e.k1;
        k2 = e.k2;
        result.modelFound = true;
    }

    Polyline points(const CandidateLine& line, double step) const {
        return sampleLine(frames[line.frame].pieces, line.pieces, geometry, k1, k2, step);
    }

    void reject(const CandidateLine& line, LineRejection why, double measure) {
        result.rejected.push_back({points(line, settings.sampleStep), why, measure});
    }

    // Straightened with the model, the line is not straight: further than
    // the tolerance from a straight line, or clearly bent (a quadratic
    // follows it kBendFactor times closer than a straight line does).
    bool disagrees(const CandidateLine& line, double rms) const {
        if (rms > settings.lineTolerance) return true;
        if (rms <= settings.bendTolerance) return false;
        Polyline joined;
        for (int i : line.pieces) {
            const Polyline s = straightened(frames[line.frame].pieces[i].points, geometry, k1, k2);
            joined.insert(joined.end(), s.begin(), s.end());
        }
        return rms > kBendFactor * fitPiece(joined.data(), 0, joined.size() - 1).rms;
    }

    std::vector<CandidateLine> linesThatCount();
    void dropClusters(std::vector<CandidateLine>& kept);
    void write(const std::vector<CandidateLine>& kept);
};

// Merged lines, the model re-estimated on them, and the tests but clusters.
std::vector<CandidateLine> Selection::linesThatCount() {
    std::vector<StraightnessMoments> pieceMoments;
    for (const FramePieces& frame : frames)
        for (const EdgePiece& piece : frame.pieces) {
            StraightnessMoments m;
            for (const PlanePoint& p : piece.points) m.add(geometry, p);
            pieceMoments.push_back(m);
        }
    estimate(pieceMoments, settings.pieceAgreement);
    std::vector<CandidateLine> lines;
    for (int round = 0; round < 2; ++round) {
        lines = mergeAll();
        std::vector<StraightnessMoments> lineMoments;
        for (const CandidateLine& line : lines)
            if (usable(line)) lineMoments.push_back(line.moments);
        estimate(lineMoments, settings.lineTolerance);
    }
    std::vector<CandidateLine> kept;
    for (CandidateLine& line : lines) {
        if (line.length < settings.minLineLength) {
            result.shortPieces += line.pieces.size();
        } else if (line.blur > settings.maxBlur) {
            reject(line, LineRejection::kBlurred, line.blur);
        } else if (line.edgeShare > settings.maxEdgeShare) {
            reject(line, LineRejection::kTextured, line.edgeShare);
        } else {
            const double rms = std::sqrt(line.moments.meanSquare(geometry, k1, k2));
            if (disagrees(line, rms))
                reject(line, LineRejection::kOutlier, rms);
            else
                kept.push_back(std::move(line));
        }
    }
    return kept;
}

// Three or more close parallel lines of one frame: the longest stays.
void Selection::dropClusters(std::vector<CandidateLine>& kept) {
    std::vector<StraightFit> fits;
    for (const CandidateLine& line : kept) {
        Polyline joined;
        for (int i : line.pieces) {
            const Polyline s = straightened(frames[line.frame].pieces[i].points, geometry, k1, k2);
            joined.insert(joined.end(), s.begin(), s.end());
        }
        fits.push_back(fitStraight(joined));
    }
    const std::size_t n = kept.size();
    std::vector<std::vector<std::size_t>> near(n);
    for (std::size_t a = 0; a < n; ++a)
        for (std::size_t b = a + 1; b < n; ++b)
            if (kept[a].frame == kept[b].frame &&
                closeParallels(fits[a], fits[b], settings.clusterDistance)) {
                near[a].push_back(b);
                near[b].push_back(a);
            }
    std::vector<bool> drop(n, false);
    for (std::size_t a = 0; a < n; ++a) {
        if (near[a].size() + 1 < kClusterSize) continue;
        // a and its neighbours: all but the longest go.
        std::size_t longest = a;
        for (std::size_t b : near[a])
            if (kept[b].length > kept[longest].length) longest = b;
        for (std::size_t b : near[a])
            if (b != longest) drop[b] = true;
        if (a != longest) drop[a] = true;
    }
    std::vector<CandidateLine> stay;
    for (std::size_t a = 0; a < n; ++a) {
        if (!drop[a]) {
            stay.push_back(std::move(kept[a]));
            continue;
        }
        double nearest = settings.clusterDistance;
        for (std::size_t b : near[a])
            nearest = std::min(nearest, std::fabs(fits[a].across(fits[b].cx, fits[b].cy)));
        reject(kept[a], LineRejection::kClustered, nearest);
    }
    kept = std::move(stay);
}

void Selection::write(const std::vector<CandidateLine>& kept) {
    double total = 0.0;
    for (const CandidateLine& line : kept) total += line.length;
    const double step = std::max(settings.sampleStep, total / std::max(1L, settings.maxPoints));
    const double diagonal = 2.0 * geometry.halfDiagonal;
    std::vector<Polyline>& into =
        total < settings.minTotalInDiagonals * diagonal ? result.tooLittle : result.lines;
    for (const CandidateLine& line : kept) into.push_back(points(line, step));
    result.radial1 = k1;
    result.radial2 = k2;
}
}  // namespace

LineDetection selectLines(const std::vector<FramePieces>& frames,
                          const LineDetectSettings& settings) {
    Selection selection{frames, settings, {}, 0.0, 0.0, {}};
    if (frames.empty()) return selection.result;
    selection.geometry = RadialFrame::of(frames[0].width, frames[0].height);
    selection.result.width = frames[0].width;
    selection.result.height = frames[0].height;
    for (const FramePieces& frame : frames) {
        selection.result.shortPieces += frame.shortPieces;
        for (const EdgePiece& piece : frame.tooCurved)
            selection.result.rejected.push_back(
                {sampleLine({piece}, {0}, selection.geometry, 0.0, 0.0, settings.sampleStep),
                 LineRejection::kTooCurved, 1.0 / std::max(piece.curvature, 1e-12)});
    }
    std::vector<CandidateLine> kept = selection.linesThatCount();
    selection.dropClusters(kept);
    selection.write(kept);
    return selection.result;
}

bool detectLines(const FloatImageZel& luminance, const LineDetectSettings& settings,
                 LineDetection& out) {
    std::vector<FramePieces> frames(1);
    ZelEdges edges;
    if (!findEdgePieces(luminance, settings, edges, frames[0])) return false;
    out = selectLines(frames, settings);
    return true;
}

bool detectLines(const FloatImageZel& luminance, LineDetection& out) {
    return detectLines(luminance, lineSettingsFor(luminance.width(), luminance.height()), out);
}
