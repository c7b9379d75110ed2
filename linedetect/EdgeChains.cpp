// Chaining edge points through their eight neighbours.
#include "EdgeChains.h"

#include <cmath>

namespace {
const double kMaxTurnDegrees = 45.0;
const double kPi = 3.14159265358979323846;

struct Links {
    std::vector<int> ahead;   // chosen neighbour ahead, -1 for none
    std::vector<int> behind;  // chosen neighbour behind
};

// Unit gradient of a point (zero when it has none).
void unitGradient(const ZelEdgePoint& p, double& gx, double& gy) {
    const double length = std::hypot(double(p.dx), double(p.dy));
    gx = length > 0.0 ? p.dx / length : 0.0;
    gy = length > 0.0 ? p.dy / length : 0.0;
}

// The nearest compatible neighbour of point i ahead of it (side +1) or
// behind it (side -1) along the tangent (-gy, gx).
int nearestNeighbour(const ZelEdges& edges, int i, int side) {
    static const double minCosine = std::cos(kMaxTurnDegrees * kPi / 180.0);
    const ZelEdgePoint& p = edges.points[i];
    double gx, gy;
    unitGradient(p, gx, gy);
    int best = -1;
    double bestDistance = 0.0;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const long x = p.column + dx, y = p.row + dy;
            if ((dx == 0 && dy == 0) || x < 0 || y < 0 || x >= edges.width || y >= edges.height ||
                !edges.isEdge(x, y))
                continue;
            const int j = edges.pointAt(x, y);
            const ZelEdgePoint& q = edges.points[j];
            double hx, hy;
            unitGradient(q, hx, hy);
            if (gx * hx + gy * hy < minCosine) continue;
            const double vx = q.x - p.x, vy = q.y - p.y;
            const double along = -gy * vx + gx * vy;
            if (along * side <= 0.0) continue;
            const double distance = vx * vx + vy * vy;
            if (best < 0 || distance < bestDistance) {
                best = j;
                bestDistance = distance;
            }
        }
    }
    return best;
}

Links chooseLinks(const ZelEdges& edges) {
    const int count = static_cast<int>(edges.points.size());
    std::vector<int> wantAhead(count), wantBehind(count);
    for (int i = 0; i < count; ++i) {
        wantAhead[i] = nearestNeighbour(edges, i, 1);
        wantBehind[i] = nearestNeighbour(edges, i, -1);
    }
    Links links{std::vector<int>(count, -1), std::vector<int>(count, -1)};
    // Mutual choices first, then the remaining choices where both ends are free.
    for (int i = 0; i < count; ++i) {
        const int j = wantAhead[i];
        if (j >= 0 && wantBehind[j] == i) {
            links.ahead[i] = j;
            links.behind[j] = i;
        }
    }
    for (int i = 0; i < count; ++i) {
        const int j = wantAhead[i];
        if (j >= 0 && links.ahead[i] < 0 && links.behind[j] < 0 && links.ahead[j] != i) {
            links.ahead[i] = j;
            links.behind[j] = i;
        }
    }
    for (int j = 0; j < count; ++j) {
        const int i = wantBehind[j];
        if (i >= 0 && links.behind[j] < 0 && links.ahead[i] < 0 && links.behind[i] != j) {
            links.ahead[i] = j;
            links.behind[j] = i;
        }
    }
    return links;
}
}  // namespace

std::vector<EdgeChain> chainEdges(const ZelEdges& edges) {
    const Links links = chooseLinks(edges);
    const int count = static_cast<int>(edges.points.size());
    std::vector<char> taken(count, 0);
    std::vector<EdgeChain> chains;
    auto follow = [&](int start) {
        EdgeChain chain;
        for (int i = start; i >= 0 && !taken[i]; i = links.ahead[i]) {
            taken[i] = 1;
            chain.push_back(i);
        }
        chains.push_back(std::move(chain));
    };
    for (int i = 0; i < count; ++i)
        if (links.behind[i] < 0) follow(i);
    // What is left lies on closed loops.
    for (int i = 0; i < count; ++i)
        if (!taken[i]) follow(i);
    return chains;
}
