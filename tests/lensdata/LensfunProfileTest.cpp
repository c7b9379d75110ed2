// lensfun profiles in and out, with lfModifier as the reference: the
// convention (centre, radius, crop and aspect, centre shift) on hand-computed
// cases, the database walk (every poly5 profile exact; the residual
// distribution of poly3 and ptlens printed as the README's table), a profile
// found by name, the written entry read back by lensfun, and bad input.
#include <gtest/gtest.h>
#include <lensfun/lensfun.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "LensfunProfile.h"
#include "StMap.h"

namespace {

// A lens made in memory: poly5 k1 only, calibrated at `crop` and `aspect`.
LensfunProfile syntheticProfile(float k1, float crop, float aspect, float cameraCrop,
                                float shiftX = 0.0f, float shiftY = 0.0f) {
    lfLens lens;
    lens.SetMaker("Test");
    lens.SetModel("Synthetic");
    lens.AddMount("Generic");
    lens.CropFactor = crop;
    lens.AspectRatio = aspect;
    lens.CenterX = shiftX;
    lens.CenterY = shiftY;
    lens.Type = LF_RECTILINEAR;
    lfLensCalibDistortion d = {LF_DIST_MODEL_POLY5, 50.0f, {k1, 0.0f, 0.0f}};
    lens.AddCalibDistortion(&d);
    LensfunProfile profile;
    EXPECT_TRUE(lensfunProfileOf(lens, 50.0, cameraCrop, profile).ok());
    return profile;
}

const LensfunDatabase& installed() {
    static LensfunDatabase database;
    static const bool loaded = database.loadInstalled().ok();
    EXPECT_TRUE(loaded);
    return database;
}

double percentile(std::vector<double> v, double p) {
    if (v.empty()) return 0.0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, static_cast<size_t>(p * (v.size() - 1) + 0.5))];
}

}  // namespace

TEST(LensfunProfile, ConventionByHand) {
    // 3000 x 2000, calibrated at crop 1 and 3:2, camera crop 1: the centre is
    // (1499.5, 999.5) and radius 1 is hypot(1499.5, 999.5) / sqrt(1 + 1.5^2)
    // = 999.6154 pixels; k1 = 0.1 carries radius 1 to 1.1.
    const double N = std::hypot(1499.5, 999.5) / std::sqrt(1 + 2.25);
    ReferenceLens lens = lensfunReference(syntheticProfile(0.1f, 1.0f, 1.5f, 1.0f), 3000, 2000);
    EXPECT_DOUBLE_EQ(lens.centre.x, 1499.5);
    EXPECT_DOUBLE_EQ(lens.centre.y, 999.5);
    EXPECT_NEAR(lens.unitRadius, N, 1e-9);
    std::vector<tagDPT2> p = {{1499.5 + N, 999.5}, {1499.5, 999.5 - 0.5 * N}};
    lens.distort(p);
    EXPECT_NEAR(p[0].x, 1499.5 + 1.1 * N, 2e-3);
    EXPECT_NEAR(p[1].y, 999.5 - 0.5 * N * (1 + 0.1 * 0.25), 2e-3);

    // A camera of crop 2 on a lens calibrated at crop 1 sees half the image
    // circle: radius 1 is twice as many of its pixels.
    lens = lensfunReference(syntheticProfile(0.1f, 1.0f, 1.5f, 2.0f), 3000, 2000);
    p = {{1499.5 + N, 999.5}};
    lens.distort(p);
    EXPECT_NEAR(p[0].x, 1499.5 + N * (1 + 0.1 * 0.25), 2e-3);

    // The centre shift is in half the shorter side (W - 1 or H - 1); lensfun's
    // y runs down, the plug-in's up.
    lens = lensfunReference(syntheticProfile(0.1f, 1.0f, 1.5f, 1.0f, 0.02f, -0.03f), 3000, 2000);
    EXPECT_NEAR(lens.centre.x, 1499.5 + 0.02 * 999.5, 1e-4);
    EXPECT_NEAR(lens.centre.y, 1999 - (999.5 - 0.03 * 999.5), 1e-4);
    p = {lens.centre};
    lens.distort(p);  // the centre stays where it is
    EXPECT_NEAR(p[0].x, lens.centre.x, 2e-3);
    EXPECT_NEAR(p[0].y, lens.centre.y, 2e-3);

    // Exact conversion with a shifted centre, measured against lensfun.
    LensConversion conversion;
    ASSERT_TRUE(convertFromLensfun(syntheticProfile(0.05f, 1.0f, 1.5f, 1.0f, 0.02f, -0.03f), 3000,
                                   2000, CorrectingMode::kAdd, conversion)
                    .ok());
    EXPECT_TRUE(conversion.exact);
    EXPECT_LT(conversion.residual.largest, 0.01);
}

TEST(LensfunProfile, DatabaseWalkPoly5ExactOthersWithinTheirResidual) {
    const lfLens* const* lenses = installed().get()->GetLenses();
    ASSERT_NE(lenses, nullptr);
    // Each calibration at its own focal length, on a frame of the
    // calibration's shape, 2048 wide, with a camera of the calibration's crop.
    std::map<int, std::vector<double>> largest[2], rms[2];
    std::map<int, int> refused[2];
    int poly5 = 0;
    for (int i = 0; lenses[i] != nullptr; ++i) {
        const lfLens& lens = *lenses[i];
        if (lens.CalibDistortion == nullptr) continue;
        const int width = 2048;
        const int height = static_cast<int>(std::lround(width / lens.AspectRatio));
        for (int j = 0; lens.CalibDistortion[j] != nullptr; ++j) {
            const lfLensCalibDistortion& d = *lens.CalibDistortion[j];
            LensfunProfile profile;
            const LensDataStatus found = lensfunProfileOf(lens, d.Focal, lens.CropFactor, profile);
            ASSERT_TRUE(found.ok()) << found.message;
            for (int m = 0; m < 2; ++m) {
                const CorrectingMode mode = m == 0 ? CorrectingMode::kAdd : CorrectingMode::kRemove;
                LensConversion conversion;
                const LensDataStatus status =
                    convertFromLensfun(profile, width, height, mode, conversion);
                if (!status.ok()) {
                    // Too strong for the controls' ranges: refused, counted apart.
                    EXPECT_EQ(status.failure, LensDataFailure::kNotRepresentable);
                    ++refused[m][profile.model];
                    continue;
                }
                if (profile.model == LF_DIST_MODEL_POLY5 && m == 0) {
                    ++poly5;
                    EXPECT_TRUE(conversion.exact) << profile.lensName;
                    EXPECT_LT(conversion.residual.largest, 0.01) << profile.lensName;
                }
                largest[m][profile.model].push_back(conversion.residual.largest);
                rms[m][profile.model].push_back(conversion.residual.rms);
            }
        }
    }
    EXPECT_GT(poly5, 0);
    const char* names[] = {"none", "poly3", "poly5", "ptlens"};
    std::printf(
        "| corrects in | model | profiles | largest residual px: median | 90 %% | 99 %% "
        "| max | RMS px: median | refused |\n|---|---|---|---|---|---|---|---|---|\n");
    for (int m = 0; m < 2; ++m)
        for (const auto& entry : largest[m])
            std::printf("| Mode %s | %s | %zu | %.3f | %.3f | %.3f | %.3f | %.3f | %d |\n",
                        m == 0 ? "Add" : "Remove", names[entry.first], entry.second.size(),
                        percentile(entry.second, 0.5), percentile(entry.second, 0.9),
                        percentile(entry.second, 0.99), percentile(entry.second, 1.0),
                        percentile(rms[m][entry.first], 0.5), refused[m][entry.first]);
}

TEST(LensfunProfile, FoundByNameAndInterpolatedByLensfun) {
    LensfunProfile profile;
    const LensDataStatus found = findLensfunProfile(installed(), "Canon", "Canon PowerShot G12",
                                                    "Canon PowerShot G12", 10.0, profile);
    ASSERT_TRUE(found.ok()) << found.message;
    EXPECT_EQ(profile.model, LF_DIST_MODEL_POLY5);
    EXPECT_FLOAT_EQ(profile.cameraCrop, 4.63f);
    // lensfun interpolates between the calibrations at 8.108 and 12.074 mm.
    EXPECT_LT(profile.terms[0], -0.010041248f);
    EXPECT_GT(profile.terms[0], -0.015375784f);
    LensConversion conversion;
    ASSERT_TRUE(convertFromLensfun(profile, 4000, 3000, CorrectingMode::kAdd, conversion).ok());
    EXPECT_TRUE(conversion.exact);
    EXPECT_LT(conversion.residual.largest, 0.01);

    LensDataStatus status =
        findLensfunProfile(installed(), "Nokon", "D9", "Canon PowerShot G12", 10.0, profile);
    EXPECT_EQ(status.failure, LensDataFailure::kUnknownCamera);
    EXPECT_NE(status.message.find("Nokon"), std::string::npos);
    status = findLensfunProfile(installed(), "Canon", "Canon PowerShot G12", "Zzyzx 999mm f/0.5",
                                10.0, profile);
    EXPECT_EQ(status.failure, LensDataFailure::kUnknownLens);
    status = findLensfunProfile(installed(), "Canon", "Canon PowerShot G12", "Canon PowerShot G12",
                                200.0, profile);
    EXPECT_EQ(status.failure, LensDataFailure::kBadValue);
    EXPECT_NE(status.message.find("range"), std::string::npos);
}

TEST(LensfunProfile, WrittenEntryReadBackByLensfun) {
    LensSetup exact;
    exact.mode = LensMode::kAdd;
    exact.radial1 = -0.06f;
    exact.radial2 = 0.01f;
    exact.centreXPercent = 48.0f;
    exact.centreYPercent = 53.0f;
    LensfunExport out;
    ASSERT_TRUE(convertToLensfun(exact, 3000, 2000, 35.0, 1.5, "My lens", out).ok());
    EXPECT_TRUE(out.exact);
    EXPECT_LT(out.residual.largest, 0.01) << out.xml;
    EXPECT_NE(out.xml.find("<distortion model=\"poly5\" focal=\"35\""), std::string::npos);
    EXPECT_NE(out.xml.find("<model>My lens</model>"), std::string::npos);

    // Squeeze is not lensfun's: fitted, and the fit holds within its residual
    // when lensfun reads the entry back.
    LensSetup fitted = exact;
    fitted.mode = LensMode::kRemove;
    fitted.squeeze = 1.2f;
    ASSERT_TRUE(convertToLensfun(fitted, 3000, 2000, 35.0, 1.5, "", out).ok());
    EXPECT_FALSE(out.exact);
    EXPECT_GT(out.residual.largest, 0.01);
    LensfunDatabase back;
    ASSERT_TRUE(back.loadText(out.xml).ok());
    LensfunProfile profile;
    ASSERT_TRUE(lensfunProfileOf(*back.get()->GetLenses()[0], 35.0, 1.5, profile).ok());
    ReferenceLens lens = lensfunReference(profile, 3000, 2000);
    const StMapSampler sampler(fitted, 3000, 2000);
    double largest = 0.0;
    for (int y = 7; y < 2000; y += 61)
        for (int x = 3; x < 3000; x += 61) {
            std::vector<tagDPT2> p = {{double(x), double(y)}};
            lens.distort(p);
            const tagDPT2 s = sampler.sourceOf(x, y);
            largest = std::max(largest, std::hypot(s.x - p[0].x, s.y - p[0].y));
        }
    EXPECT_LT(largest, 1.25 * out.residual.largest + 0.01);

    EXPECT_EQ(convertToLensfun(exact, 3000, 2000, 0.0, 1.5, "", out).failure,
              LensDataFailure::kBadValue);
}
