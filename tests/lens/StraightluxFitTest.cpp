// The automatic fit and the other callbacks: the straightness measure,
// recovering a known coefficient from drawn lines, the two failure messages,
// the flat-error search, reset, kill-lines and line edit.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "PolyLineSet2DZel.h"
#include "StraightluxModel.h"
#include "StraightluxRig.h"
#include "zel_heap.h"

namespace {

using simhost::Host;

void AddLine(Straightlux& lens, const std::vector<tagDPT2>& fractions) {
    PolyLine2DZel* line = lens.lines->new_line(0);
    for (const tagDPT2& p : fractions) line->add_point(p);
}

bool Messaged(const std::string& text) {
    return Host::instance().called("sparkMessage(" + text + ")");
}

}  // namespace

TEST(StraightluxFit, MeasureErrorSumsInteriorDistancesNewestFirst) {
    StraightluxRig rig;
    Straightlux& lens = rig.lens;
    lens.width = lens.height = 100;
    lens.centreX = lens.centreY = 50.0f;
    lens.radial1 = 0.3f;
    AddLine(lens, {{0.1, 0.5}, {0.5, 0.6}, {0.9, 0.5}});               // 10 pixels off its chord
    AddLine(lens, {{0.2, 0.2}, {0.3, 0.3}});                           // two points: not measured
    AddLine(lens, {{0.1, 0.1}, {0.2, 0.1}, {0.5, 0.13}, {0.9, 0.1}});  // 0 and 3 pixels
    lens.errorPoints = static_cast<tagDPT2*>(ZEL_MALLOC("test", 9 * sizeof(tagDPT2)));

    // Measured with radial1 = 0, where the model is the identity in pixels.
    EXPECT_NEAR(lens.MeasureError(0.0, false), 13.0, 1e-9);
    EXPECT_FLOAT_EQ(lens.radial1, 0.3f);  // restored
    ASSERT_EQ(lens.errorPointCount, 7);
    const double expected[7][2] = {{10, 10}, {20, 10}, {50, 13}, {90, 10},
                                   {10, 50}, {50, 60}, {90, 50}};
    for (int i = 0; i < 7; ++i) {
        EXPECT_NEAR(lens.errorPoints[i].x, expected[i][0], 1e-9) << i;
        EXPECT_NEAR(lens.errorPoints[i].y, expected[i][1], 1e-9) << i;
    }
    EXPECT_GT(std::fabs(lens.MeasureError(0.3, true) - 13.0), 0.1);  // k2 bends the lines
    EXPECT_EQ(lens.radial2, 0.0f);
}

TEST(StraightluxFit, AutoFindRecoversAKnownCoefficient) {
    // A reference that bends with k1 alone: the fit must find it, keep k2 at
    // 0, and reset the centre and curvatures it was started from.
    for (const float k1 : {0.1f, -0.1f}) {
        const int w = 640, h = 480;
        StraightluxModel reference;
        reference.width = w, reference.height = h, reference.centreX = 320, reference.centreY = 240;
        reference.radial1 = k1;
        StraightluxRig rig;
        Straightlux& lens = rig.lens;
        lens.width = w, lens.height = h;
        lens.centreX = 100.0f, lens.xCurvature = lens.yCurvature = 0.2f;  // the fit resets these
        rig.centreX.Value = 30.0f, rig.xCurvature.Value = 0.2f;
        // Lines that the reference forward model carries onto straight rows and columns.
        for (double row : {40.0, 100.0, 380.0, 440.0, -60.0, -580.0}) {
            std::vector<tagDPT2> points;
            for (int n = 0; n < 8; ++n) {
                const double t = 40.0 + n * 80.0;
                const tagDPT2 straight = row >= 0 ? tagDPT2{t, row} : tagDPT2{-row, t * h / w};
                tagDPT2 drawn;
                ASSERT_GE(reference.MapDistortedToUndistorted(straight, drawn), 0);
                points.push_back(tagDPT2{drawn.x / w, drawn.y / h});
            }
            AddLine(lens, points);
        }

        lens.AutoCB(lens.info.autoFind, 1.0);
        // Searches end below a 1e-5 step and passes settle below a 1e-5 change; allow ten times
        // that.
        EXPECT_NEAR(lens.radial1, k1, 1e-4);
        EXPECT_NEAR(lens.radial2, 0.0f, 1e-4);
        EXPECT_EQ(rig.radial1.Value, lens.radial1);
        EXPECT_EQ(rig.radial2.Value, lens.radial2);
        EXPECT_EQ(lens.centreX, 320.0f);
        EXPECT_EQ(lens.centreY, 240.0f);
        EXPECT_EQ(lens.xCurvature, 0.0f);
        EXPECT_EQ(lens.yCurvature, 0.0f);
        EXPECT_EQ(rig.xCurvature.Value, 0.0f);
        EXPECT_EQ(rig.centreX.Value, 50.0f);
        EXPECT_EQ(rig.centreY.Value, 50.0f);
        EXPECT_EQ(lens.mode, kModeAutoRemove);
        EXPECT_EQ(rig.mode.Value, kModeAutoRemove - 1);
        EXPECT_FALSE(Host::instance().called("sparkControlUpdate(16)"));  // Squeeze untouched
        EXPECT_EQ(Host::instance().count("sparkMessage"), 0);
        EXPECT_EQ(lens.errorPointCount, 48);
    }
}

TEST(StraightluxFit, AutoFindRecoversBothCoefficientsFromFullFrameLines) {
    // With lines that span the whole frame, from near the centre out to the
    // edges, the radii cover enough range to separate k1 from k2.
    const int w = 640, h = 480;
    const float k1 = 0.1f, k2 = 0.05f;
    StraightluxModel reference;
    reference.width = w, reference.height = h, reference.centreX = 320, reference.centreY = 240;
    reference.radial1 = k1, reference.radial2 = k2;
    StraightluxRig rig;
    Straightlux& lens = rig.lens;
    lens.width = w, lens.height = h;
    const int kPoints = 12;
    for (const bool row : {true, false}) {
        for (const double at : row ? std::vector<double>{10, 60, 120, 360, 420, 470}
                                   : std::vector<double>{10, 80, 160, 480, 560, 630}) {
            std::vector<tagDPT2> points;
            for (int n = 0; n < kPoints; ++n) {
                const double t = (row ? w - 1 : h - 1) * n / double(kPoints - 1);
                const tagDPT2 straight = row ? tagDPT2{t, at} : tagDPT2{at, t};
                tagDPT2 drawn;
                ASSERT_GE(reference.MapDistortedToUndistorted(straight, drawn), 0);
                points.push_back(tagDPT2{drawn.x / w, drawn.y / h});
            }
            AddLine(lens, points);
        }
    }
    const double before = lens.MeasureError(0.0, false);
    lens.AutoCB(lens.info.autoFind, 1.0);
    // The alternating searches stop near, not at, the joint minimum of a sum
    // of absolute distances: within 0.005 of each coefficient, and the lines
    // far straighter than with no correction.
    EXPECT_NEAR(lens.radial1, k1, 5e-3);
    EXPECT_NEAR(lens.radial2, k2, 5e-3);
    EXPECT_LT(lens.MeasureError(lens.radial1, false), before / 20);
}

TEST(StraightluxFit, FailuresReportAndFlatErrorRunsTheStepBudget) {
    StraightluxRig rig;
    Straightlux& lens = rig.lens;
    lens.width = 64, lens.height = 48;
    lens.mode = kModeAdd;
    rig.mode.Value = kModeAdd - 1;
    rig.view.Value = kViewInput - 1;

    lens.AutoCB(lens.info.autoFind, 1.0);
    EXPECT_TRUE(Messaged("Need drawn lines to auto remove."));
    EXPECT_EQ(Host::instance().count("sparkControlUpdate"), 0);  // Mode and View as they were

    AddLine(lens, {{0.1, 0.1}, {0.9, 0.2}});
    AddLine(lens, {{0.3, 0.3}});
    rig.radial1.Value = 0.25f;
    lens.AutoCB(lens.info.autoFind, 1.0);
    EXPECT_TRUE(Messaged("Optimization failed."));
    EXPECT_EQ(lens.mode, kModeAdd);
    EXPECT_EQ(rig.mode.Value, kModeAdd - 1);
    EXPECT_EQ(rig.view.Value, kViewResult - 1);
    EXPECT_EQ(rig.radial1.Value, 0.25f);  // nothing reset

    // Lines from the frame centre with a second point on it: the centre maps
    // onto itself and onto the first mapped point, so its distance to the chord
    // is exactly 0 for every k1, k2. Every step then moves by +0.5 (e+ <= e0,
    // tie to c + h), none shrinks, each search stops after 1000 steps (+500),
    // nothing settles and all 50 passes run: 25000.
    AddLine(lens, {{0.5, 0.5}, {0.5, 0.5}, {0.9, 0.5}});
    AddLine(lens, {{0.5, 0.5}, {0.5, 0.5}, {0.8, 0.2}});
    lens.AutoCB(lens.info.autoFind, 1.0);
    EXPECT_EQ(lens.radial1, 25000.0f);
    EXPECT_EQ(lens.radial2, 25000.0f);
    EXPECT_EQ(rig.radial2.Value, 25000.0f);
}

TEST(StraightluxFit, ResetKillLinesAndLineEdit) {
    StraightluxRig rig;
    Straightlux& lens = rig.lens;
    lens.width = 10, lens.height = 8;

    // Coming to "Add Line" from another entry starts a new line; staying does not.
    lens.newLine = false;
    rig.lineEdit.Value = kLineEditAddLine - 1;
    lens.LineEditCB(lens.info.lineEdit, 1.0);
    EXPECT_TRUE(lens.newLine);
    lens.newLine = false;
    lens.LineEditCB(lens.info.lineEdit, 1.0);
    EXPECT_FALSE(lens.newLine);
    AddLine(lens, {{0.1, 0.1}, {0.5, 0.5}, {0.9, 0.9}});
    lens.currentLine = lens.lines->head;
    rig.lineEdit.Value = kLineEditNoAction - 1;
    lens.LineEditCB(lens.info.lineEdit, 1.0);
    EXPECT_EQ(lens.currentLine, nullptr);
    EXPECT_EQ(lens.lastLineEdit, kLineEditNoAction);

    ASSERT_TRUE(lens.OptimizeK1K2());
    rig.lineEdit.Value = kLineEditMovePoint - 1;
    lens.KillLinesCB(lens.info.killLines, 1.0);
    EXPECT_EQ(lens.lines->head, nullptr);
    EXPECT_EQ(lens.errorPoints, nullptr);
    EXPECT_EQ(lens.errorPointCount, 0);
    EXPECT_EQ(lens.lastLineEdit, kLineEditNoAction);
    EXPECT_EQ(rig.lineEdit.Value, 0);

    // Reset: every control back to the control table's default, lines gone.
    rig.radial1.Value = rig.radial2.Value = rig.xCurvature.Value = rig.yCurvature.Value = 0.5f;
    rig.centreX.Value = rig.centreY.Value = 10.0f;
    rig.squeeze.Value = rig.magnify.Value = 2.0f;
    rig.sampling.Value = rig.lineEdit.Value = rig.mode.Value = rig.view.Value = 1;
    AddLine(lens, {{0.1, 0.1}});
    lens.ResetCB(lens.info.reset, 1.0);
    for (const SparkFloatStruct* r : {&rig.radial1, &rig.radial2, &rig.xCurvature, &rig.yCurvature})
        EXPECT_EQ(r->Value, 0.0f);
    EXPECT_EQ(rig.centreX.Value, 50.0f);
    EXPECT_EQ(rig.centreY.Value, 50.0f);
    EXPECT_EQ(rig.squeeze.Value, 1.0f);
    EXPECT_EQ(rig.magnify.Value, 1.0f);
    EXPECT_EQ(rig.sampling.Value, kSamplingSharpCubic - 1);
    EXPECT_EQ(rig.lineEdit.Value, 0);
    EXPECT_EQ(rig.mode.Value, 0);
    EXPECT_EQ(rig.view.Value, 0);
    EXPECT_EQ(lens.centreX, 5.0f);
    EXPECT_EQ(lens.centreY, 4.0f);
    EXPECT_EQ(lens.sampling, kSamplingSharpCubic);
    EXPECT_EQ(lens.lines->head, nullptr);
}
