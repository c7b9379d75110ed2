#include "ZelCanny.h"

#include "ZelCannySteps.h"
#include "ZelGaussianBlur.h"

bool zelCanny(const FloatImageZel& in, const ZelCannySettings& settings, ZelEdges& edges) {
    if (!in.hasPixels() || !(settings.sigma >= 0.0f) || !(settings.low <= settings.high))
        return false;
    FloatImageZel blurred;
    const FloatImageZel* source = &in;
    if (settings.sigma > 0.0f) {
        if (!zelGaussianBlur(in, blurred, settings.sigma)) return false;
        source = &blurred;
    }
    if (!zelGradient(*source, settings.gradient, edges.dx, edges.dy) ||
        !zelGradientMagnitude(edges.dx, edges.dy, edges.magnitude))
        return false;
    edges.width = in.width();
    edges.height = in.height();
    std::vector<unsigned char> classes;
    if (!zelNonMaximumClasses(edges.magnitude, edges.dx, edges.dy, settings.low, settings.high,
                              classes))
        return false;
    zelHysteresis(classes, edges.width, edges.height, edges.map);
    zelEdgeSubPixelPoints(edges);
    return true;
}
