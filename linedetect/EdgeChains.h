// Linking Canny edge points into chains: each point is joined to the nearest
// edge point ahead of it along the edge (the tangent, perpendicular to its
// gradient) among its eight neighbours, and to the nearest behind it, when
// their gradients point the same way (within kMaxTurnDegrees). A link is
// kept when both ends choose each other, then unpaired ends take their
// choice if it is still free. Chains run from a point with no link behind it
// (a cycle is cut at its first point in row order); the order of the points
// is the scan order, so the chains are the same on every run.
#pragma once

#include <vector>

#include "ZelEdges.h"

// Indices into edges.points, in order along each chain.
using EdgeChain = std::vector<int>;

std::vector<EdgeChain> chainEdges(const ZelEdges& edges);
