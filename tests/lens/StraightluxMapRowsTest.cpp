// The address map's row fillers against the model's one-point functions, in
// both forms (AVX2 and plain), and the whole map built in bands on 1 to 16
// processors: every entry and the mean correction count equal, bit for bit.
// The models include barrel fold-over strong enough that some pixels fail
// (singular or not converged) and widths that leave a tail of single pixels.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "ImageXfmZel.h"
#include "Library/FakeHost.h"
#include "Straightlux.h"
#include "StraightluxMapRows.h"

namespace {

struct Case {
    int width, height;
    float centreX, centreY;  // fractions of the frame
    float k1, k2, squeeze, xCurvature, yCurvature;
};

const Case kCases[] = {
    {53, 41, 0.5f, 0.5f, 0.1f, 0.02f, 1.0f, 0.0f, 0.0f},
    {67, 38, 0.3f, 0.7f, -0.12f, 0.03f, 1.4f, 0.1f, -0.2f},
    {40, 31, 0.5f, 0.5f, -0.4375f, -0.03125f, 1.0f, 0.0f, 0.0f},  // Newton cycles at the edge
    {37, 29, 0.0f, 1.0f, -1.0f, -1.0f, 0.7f, 0.6f, -0.5f},        // folds over: failures
    {45, 33, 0.9f, 0.2f, 3.0f, 3.0f, 5.0f, -1.0f, 1.0f},
    {16, 3, 0.5f, 0.5f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f},  // identity
    {3, 2, 0.5f, 0.5f, 0.2f, 0.1f, 1.0f, 0.0f, 0.0f},   // narrower than one vector
};

StraightluxModel modelFor(const Case& c) {
    StraightluxModel model;
    model.width = c.width;
    model.height = c.height;
    model.centreX = c.centreX * c.width;
    model.centreY = c.centreY * c.height;
    model.radial1 = c.k1;
    model.radial2 = c.k2;
    model.squeeze = c.squeeze;
    model.xCurvature = c.xCurvature;
    model.yCurvature = c.yCurvature;
    return model;
}

// The Remove map as the model's one-point inverse gives it: (0, 0) where it fails.
std::vector<float> removeMapByPoints(StraightluxModel& model) {
    std::vector<float> map;
    for (int j = 0; j < model.height; ++j)
        for (int i = 0; i < model.width; ++i) {
            tagDPT2 out{0, 0};
            if (model.MapDistortedToUndistorted({double(i), double(j)}, out) < 0) out = {0, 0};
            map.push_back(static_cast<float>(out.x));
            map.push_back(static_cast<float>(out.y));
        }
    return map;
}

bool sameBytes(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

}  // namespace

TEST(StraightluxMapRows, RemoveRowsEqualTheOnePointInverseInBothForms) {
    int failing = 0;
    for (const Case& c : kCases) {
        StraightluxModel model = modelFor(c);
        model.iterationTotal = 0.0;
        const std::vector<float> want = removeMapByPoints(model);
        const StraightluxModel::InversePlan plan = model.makeInversePlan();
        for (size_t e = 0; e < want.size(); e += 2) failing += want[e] == 0 && want[e + 1] == 0;

        std::vector<float> plain(want.size(), -1.0f);
        EXPECT_EQ(fillRemoveRowsPlain(plan, c.width, plain.data(), 0, c.height - 1),
                  static_cast<int64_t>(model.iterationTotal));
        EXPECT_TRUE(sameBytes(plain, want)) << c.width << "x" << c.height << " k1 " << c.k1;
#if ZEL_AVX2_FORMS
        if (!zelUseAvx2()) continue;
        std::vector<float> vector(want.size(), -1.0f);
        // In two bands, the second starting mid-frame.
        int64_t corrections = fillRemoveRowsAvx2(plan, c.width, vector.data(), 0, c.height / 2);
        corrections +=
            fillRemoveRowsAvx2(plan, c.width, vector.data(), c.height / 2 + 1, c.height - 1);
        EXPECT_EQ(corrections, static_cast<int64_t>(model.iterationTotal));
        EXPECT_TRUE(sameBytes(vector, want)) << c.width << "x" << c.height << " k1 " << c.k1;
#endif
    }
    EXPECT_GT(failing, 10);  // the failure paths were taken
}

TEST(StraightluxMapRows, AddRowsEqualTheSinglePrecisionForwardInBothForms) {
    for (const Case& c : kCases) {
        const StraightluxModel model = modelFor(c);
        const StraightluxModel::FloatCoefficients coefficients = model.makeFloatCoefficients();
        std::vector<float> want;
        for (int j = 0; j < c.height; ++j)
            for (int i = 0; i < c.width; ++i) {
                float x = 0, y = 0;
                StraightluxModel::mapUndistortedToDistortedFloat(coefficients, float(i), float(j),
                                                                 x, y);
                want.push_back(x);
                want.push_back(y);
            }
        std::vector<float> plain(want.size(), -1.0f);
        fillAddRowsPlain(coefficients, c.width, plain.data(), 0, c.height - 1);
        EXPECT_TRUE(sameBytes(plain, want)) << c.width << "x" << c.height;
#if ZEL_AVX2_FORMS
        if (!zelUseAvx2()) continue;
        std::vector<float> vector(want.size(), -1.0f);
        fillAddRowsAvx2(coefficients, c.width, vector.data(), 0, c.height - 1);
        EXPECT_TRUE(sameBytes(vector, want)) << c.width << "x" << c.height;
#endif
    }
}

// The map of a Straightlux object built in bands over n processors (threads
// of the fake host), both modes, against the same map on one processor.
TEST(StraightluxMapRows, BandedMapsAndCorrectionCountsDoNotDependOnTheProcessorCount) {
    fakehost::Host& host = fakehost::Host::instance();
    host.reset();
    for (const Case& c : kCases) {
        for (bool add : {false, true}) {
            std::vector<float> first;
            double firstTotal = 0.0;
            for (int processors = 1; processors <= 16; ++processors) {
                host.processors = processors;
                zelHost().frame.processors = processors;
                Straightlux lens;
                static_cast<StraightluxModel&>(lens) = modelFor(c);
                lens.ComputeAddressMap(add);
                // The plug-in leaves its resampler to the library's lifetime; not here.
                delete lens.xfm;
                lens.xfm = nullptr;
                ASSERT_NE(lens.addressMap, nullptr);
                std::vector<float> map(lens.addressMap,
                                       lens.addressMap + 2 * size_t(c.width) * c.height);
                if (processors == 1) {
                    first = map;
                    firstTotal = lens.iterationTotal;
                    continue;
                }
                EXPECT_TRUE(sameBytes(map, first))
                    << c.width << "x" << c.height << " add " << add << " on " << processors;
                EXPECT_EQ(lens.iterationTotal, firstTotal)
                    << c.width << "x" << c.height << " on " << processors;
            }
        }
    }
    zelHost().frame.processors = 0;
    host.reset();
}
