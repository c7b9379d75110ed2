// Robust estimate of (k1, k2) from many edges.
#include "RadialConsensus.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>

namespace {
const double kMaxK1 = 0.8;
const int kGridSteps = 64;
const int kGoldenSteps = 40;
const std::size_t kCandidateEdges = 120;
// An edge whose RMS grows by the tolerance when k1 moves this far from its
// straightest tells about k1: it gets a whole vote.
const double kInformativeStep = 0.05;
// Vote totals this close are a tie.
const double kVoteTie = 1e-9;
// A weak pull of the model towards no distortion, in squared pixels per
// point for a coefficient of 1: where the edges tell little (few, short, near
// the centre) the model stays put instead of wandering to where one curved
// object happens to be straight; where they tell much it moves the estimate
// by a small fraction of what they decide.
const double kModelPull = 0.3;

double golden(const std::function<double(double)>& f, double low, double high) {
    const double ratio = 0.6180339887498949;
    double a = low, b = high;
    double c = b - ratio * (b - a), d = a + ratio * (b - a);
    double fc = f(c), fd = f(d);
    for (int i = 0; i < kGoldenSteps; ++i) {
        if (fc <= fd) {
            b = d;
            d = c;
            fd = fc;
            c = b - ratio * (b - a);
            fc = f(c);
        } else {
            a = c;
            c = d;
            fc = fd;
            d = a + ratio * (b - a);
            fd = f(d);
        }
    }
    return 0.5 * (a + b);
}

// Minimises f over the plane from start with first steps `step` (Nelder-Mead).
std::array<double, 2> simplex(const std::function<double(double, double)>& f,
                              std::array<double, 2> start, std::array<double, 2> step) {
    std::array<std::array<double, 2>, 3> p = {start,
                                              std::array<double, 2>{start[0] + step[0], start[1]},
                                              std::array<double, 2>{start[0], start[1] + step[1]}};
    std::array<double, 3> v;
    for (int i = 0; i < 3; ++i) v[i] = f(p[i][0], p[i][1]);
    for (int iteration = 0; iteration < 200; ++iteration) {
        std::array<int, 3> order = {0, 1, 2};
        std::sort(order.begin(), order.end(), [&](int a, int b) { return v[a] < v[b]; });
        const int best = order[0], middle = order[1], worst = order[2];
        if (std::fabs(p[worst][0] - p[best][0]) < 1e-7 &&
            std::fabs(p[worst][1] - p[best][1]) < 1e-7)
            break;
        const double cx = 0.5 * (p[best][0] + p[middle][0]), cy = 0.5 * (p[best][1] + p[middle][1]);
        auto at = [&](double t) {
            return std::array<double, 2>{cx + t * (p[worst][0] - cx), cy + t * (p[worst][1] - cy)};
        };
        const auto reflected = at(-1.0);
        const double fr = f(reflected[0], reflected[1]);
        if (fr < v[best]) {
            const auto expanded = at(-2.0);
            const double fe = f(expanded[0], expanded[1]);
            p[worst] = fe < fr ? expanded : reflected;
            v[worst] = std::min(fe, fr);
        } else if (fr < v[middle]) {
            p[worst] = reflected;
            v[worst] = fr;
        } else {
            const auto contracted = at(fr < v[worst] ? -0.5 : 0.5);
            const double fc = f(contracted[0], contracted[1]);
            if (fc < std::min(fr, v[worst])) {
                p[worst] = contracted;
                v[worst] = fc;
            } else {
                for (int i : {middle, worst}) {
                    p[i] = {0.5 * (p[i][0] + p[best][0]), 0.5 * (p[i][1] + p[best][1])};
                    v[i] = f(p[i][0], p[i][1]);
                }
            }
        }
    }
    const int best = static_cast<int>(std::min_element(v.begin(), v.end()) - v.begin());
    return p[best];
}
}  // namespace

double straightestK1(const RadialFrame& frame, const StraightnessMoments& edge) {
    auto f = [&](double k) { return edge.meanSquare(frame, k, 0.0); };
    const double step = 2.0 * kMaxK1 / kGridSteps;
    int best = 0;
    double bestValue = f(-kMaxK1);
    for (int i = 1; i <= kGridSteps; ++i) {
        const double value = f(-kMaxK1 + i * step);
        if (value < bestValue) {
            bestValue = value;
            best = i;
        }
    }
    const double centre = -kMaxK1 + best * step;
    return golden(f, centre - step, centre + step);
}

RadialEstimate estimateRadialModel(const RadialFrame& frame,
                                   const std::vector<StraightnessMoments>& edges,
                                   double tolerance) {
    RadialEstimate estimate;
    if (edges.empty()) return estimate;
    const double limit = tolerance * tolerance;
    double points = 0.0;
    for (const StraightnessMoments& e : edges) points += e.count;
    auto truncated = [&](double k1, double k2) {
        double total = kModelPull * points * (k1 * k1 + k2 * k2);
        for (const StraightnessMoments& e : edges)
            total += e.count * std::min(e.meanSquare(frame, k1, k2), limit);
        return total;
    };
    // Candidates: the longest edges' own k1, and no distortion. Each is
    // judged by the edges that agree with it, one vote an edge at most and
    // less for an edge that agrees with almost any model (short, or near the
    // centre), so one long curved object cannot outvote many short straight
    // edges; the truncated error breaks ties.
    std::vector<std::size_t> order(edges.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return edges[a].count > edges[b].count; });
    std::vector<double> straightest(edges.size(), 0.0), weight(edges.size(), 0.0);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const StraightnessMoments& e = edges[i];
        straightest[i] = straightestK1(frame, e);
        const double best = std::sqrt(e.meanSquare(frame, straightest[i], 0.0));
        const double moved =
            std::sqrt(std::max(e.meanSquare(frame, straightest[i] + kInformativeStep, 0.0),
                               e.meanSquare(frame, straightest[i] - kInformativeStep, 0.0)));
        weight[i] = std::clamp((moved - best) / tolerance, 0.0, 1.0);
    }
    auto votes = [&](double k1) {
        double total = 0.0;
        for (std::size_t i = 0; i < edges.size(); ++i)
            if (edges[i].meanSquare(frame, k1, 0.0) <= limit) total += weight[i];
        return total;
    };
    double bestK1 = 0.0, bestVotes = votes(0.0), bestCost = truncated(0.0, 0.0);
    for (std::size_t i = 0; i < std::min(kCandidateEdges, order.size()); ++i) {
        const double k1 = straightest[order[i]];
        const double v = votes(k1);
        if (v < bestVotes - kVoteTie) continue;
        const double cost = truncated(k1, 0.0);
        if (v > bestVotes + kVoteTie || cost < bestCost) {
            bestVotes = v;
            bestCost = cost;
            bestK1 = k1;
        }
    }
    auto robust = simplex(truncated, {bestK1, 0.0}, {0.01, 0.005});
    // Least squares on the edges that agree.
    std::vector<const StraightnessMoments*> agreeing;
    for (const StraightnessMoments& e : edges)
        if (e.meanSquare(frame, robust[0], robust[1]) <= limit) agreeing.push_back(&e);
    auto squares = [&](double k1, double k2) {
        double total = kModelPull * points * (k1 * k1 + k2 * k2);
        for (const StraightnessMoments* e : agreeing)
            total += e->count * e->meanSquare(frame, k1, k2);
        return total;
    };
    const auto refined = agreeing.empty() ? robust : simplex(squares, robust, {0.002, 0.002});
    estimate.k1 = refined[0];
    estimate.k2 = refined[1];
    for (const StraightnessMoments& e : edges)
        estimate.rms.push_back(std::sqrt(e.meanSquare(frame, estimate.k1, estimate.k2)));
    return estimate;
}
