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
    if (!zelNonMaximumClasses(*source, settings.gradient, settings.low, settings.high,
                              edges.classes, edges.candidates))
        return false;
    edges.width = in.width();
    edges.height = in.height();
    zelKeepEdges(edges);
    return true;
}
