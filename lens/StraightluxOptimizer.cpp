// The automatic fit of the two radial coefficients to the drawn lines: the
// drawn points (fractions of the frame) are carried through the forward model
// in pixels, and the summed distance of every interior point from the chord of
// its line is minimised by alternating one-dimensional compass searches.
#include <cmath>
#include <cstddef>

#include "Geometry2D.h"
#include "PolyLineSet2DZel.h"
#include "Straightlux.h"
#include "StraightluxSource.h"
#include "zel_heap.h"

namespace {

// A line needs an interior point to say anything about straightness.
constexpr int32_t kMinMeasuredPoints = 3;

// Compass search: first step, step reduction, smallest step, step budget.
constexpr double kInitialStep = 0.5;
constexpr double kStepReduction = 0.25;
constexpr double kSmallestStep = 1e-5;
constexpr int kMaxSearchSteps = 1000;
// Alternating passes over k1 and k2, and the change below which they have settled.
constexpr int kMaxPasses = 50;
constexpr double kSettledChange = 1e-5;

}  // namespace

double Straightlux::MeasureError(double value, bool second) {
    float& coefficient = second ? radial2 : radial1;
    const float kept = coefficient;
    coefficient = static_cast<float>(value);
    double total = 0.0;
    errorPointCount = 0;

    // Newest line first; the mapped points are kept for the overlay.
    for (PolyLine2DZel* line = lines ? lines->head : nullptr; line != nullptr; line = line->next) {
        const int32_t n = line->count;
        if (n < kMinMeasuredPoints) continue;
        const tagDPT2* p = line->points;
        tagDPT2 a, b;
        MapUndistortedToDistorted(tagDPT2{p[0].x * width, p[0].y * height}, a);
        MapUndistortedToDistorted(tagDPT2{p[n - 1].x * width, p[n - 1].y * height}, b);
        if (errorPoints != nullptr) {
            errorPoints[errorPointCount] = a;
            errorPoints[errorPointCount + n - 1] = b;
        }
        for (int32_t i = 1; i <= n - 2; ++i) {
            tagDPT2 q;
            MapUndistortedToDistorted(tagDPT2{p[i].x * width, p[i].y * height}, q);
            if (errorPoints != nullptr) errorPoints[errorPointCount + i] = q;
            total += dist_from_point_to_line_2D(q, a, b, nullptr);
        }
        errorPointCount += n;
    }

    coefficient = kept;
    return total;
}

// The comparisons are no-worse-than tests on purpose: on a flat stretch of the
// error the search keeps stepping by +h instead of shrinking, until the step
// budget runs out.
double Straightlux::compassSearch(double start, bool second) {
    double c = start;
    double h = kInitialStep;
    int steps = 0;
    while (h > kSmallestStep) {
        const double e0 = MeasureError(c, second);
        const double ePlus = MeasureError(c + h, second);
        const double eMinus = MeasureError(c - h, second);
        if (ePlus <= e0 || eMinus <= e0) {
            c = (ePlus <= eMinus) ? c + h : c - h;  // a tie goes to c + h
        } else {
            h *= kStepReduction;
        }
        if (++steps >= kMaxSearchSteps) break;
    }
    return c;
}

bool Straightlux::OptimizeK1K2() {
    if (lines == nullptr) return false;
    size_t pointTotal = 0;
    bool measurable = false;
    for (PolyLine2DZel* line = lines->head; line != nullptr; line = line->next) {
        pointTotal += static_cast<size_t>(line->count);
        if (line->count >= kMinMeasuredPoints) measurable = true;
    }
    if (!measurable) return false;

    freeErrorPoints();
    errorPoints =
        static_cast<tagDPT2*>(ZEL_MALLOC(kStraightluxSource, pointTotal * sizeof(tagDPT2)));
    if (errorPoints != nullptr) errorPointCount = static_cast<int32_t>(pointTotal);

    // Start from the plain radial model about the frame centre; the squeeze stays.
    static constexpr LensField kFitStart[] = {LensField::kXCurvature, LensField::kYCurvature,
                                              LensField::kCentre, LensField::kRadial1,
                                              LensField::kRadial2};
    resetLens(kFitStart, ResetScope::kFieldsAndModel);

    float previous1 = radial1;
    float previous2 = radial2;
    for (int pass = 0; pass < kMaxPasses; ++pass) {
        radial1 = static_cast<float>(compassSearch(radial1, false));
        radial2 = static_cast<float>(compassSearch(radial2, true));
        info.radial1.SetValue(kCachedTime, radial1);
        info.radial2.SetValue(kCachedTime, radial2);
        if (pass > 0 && std::fabs(static_cast<double>(radial1) - previous1) < kSettledChange &&
            std::fabs(static_cast<double>(radial2) - previous2) < kSettledChange) {
            break;
        }
        previous1 = radial1;
        previous2 = radial2;
    }
    return true;
}
