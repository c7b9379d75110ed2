#include "StraightluxMapRows.h"

#include <cstddef>

namespace {

constexpr size_t kFloatsPerEntry = 2;

}  // namespace

int64_t fillRemoveRows(const StraightluxModel::InversePlan& plan, int32_t width, float* map,
                       long first, long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return fillRemoveRowsAvx2(plan, width, map, first, last);
#endif
    return fillRemoveRowsPlain(plan, width, map, first, last);
}

void fillAddRows(const StraightluxModel::FloatCoefficients& c, int32_t width, float* map,
                 long first, long last) {
#if ZEL_AVX2_FORMS
    if (zelUseAvx2()) return fillAddRowsAvx2(c, width, map, first, last);
#endif
    fillAddRowsPlain(c, width, map, first, last);
}

// Remove: output (i, j) shows the input point that the model carries to (i, j).
int32_t fillRemoveEntry(const StraightluxModel::InversePlan& plan, int32_t i, long j,
                        float* entry) {
    tagDPT2 source = {0.0, 0.0};
    int32_t corrections = 0;
    if (StraightluxModel::solveInverse(plan,
                                       tagDPT2{static_cast<double>(i), static_cast<double>(j)},
                                       source, corrections) < 0) {
        // A failed inverse samples the top-left pixel.
        source = tagDPT2{0.0, 0.0};
    }
    entry[0] = static_cast<float>(source.x);
    entry[1] = static_cast<float>(source.y);
    return corrections;
}

int64_t fillRemoveRowsPlain(const StraightluxModel::InversePlan& plan, int32_t width, float* map,
                            long first, long last) {
    int64_t total = 0;
    for (long j = first; j <= last; ++j) {
        float* entry = map + static_cast<size_t>(j) * width * kFloatsPerEntry;
        for (int32_t i = 0; i < width; ++i, entry += kFloatsPerEntry)
            total += fillRemoveEntry(plan, i, j, entry);
    }
    return total;
}

// Add: output (i, j) shows the input at the model's image of (i, j).
void fillAddRowsPlain(const StraightluxModel::FloatCoefficients& c, int32_t width, float* map,
                      long first, long last) {
    for (long j = first; j <= last; ++j) {
        float* entry = map + static_cast<size_t>(j) * width * kFloatsPerEntry;
        for (int32_t i = 0; i < width; ++i, entry += kFloatsPerEntry) {
            StraightluxModel::mapUndistortedToDistortedFloat(
                c, static_cast<float>(i), static_cast<float>(j), entry[0], entry[1]);
        }
    }
}
