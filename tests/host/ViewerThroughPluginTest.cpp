// The viewer through the real plug-in: the centre dragged by pointer with its
// cursors and re-render, lines drawn and edited by pointer in every
// "LineEdit" mode, AutoFind fitting pointer-drawn lines of a distorted chart,
// and the overlay rendered for real (OSMesa) on the expected pixels.
#include <Viewer.h>
#include <ViewerPointer.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/LoadedPlugin.h"

namespace {

constexpr int kWidth = 200;
constexpr int kHeight = 100;

// A handle as drawn: the centre of a recorded polygon.
struct Point {
    float x, y;
};

}  // namespace

class ViewerThroughPlugin : public LoadedPlugin {
  protected:
    void SetUp() override {
        LoadedPlugin::SetUp();
        info = host().makeInfo(kWidth, kHeight, 24);
        initialise(info);
        host().setBuffer(2, kWidth, kHeight, 24);
        host().setBuffer(1, kWidth, kHeight, 24);
        ASSERT_NE(plugin.process(info), nullptr);  // the model learns the frame size
        plugin.overlay(info, 1.0f);                // the surface learns it too
    }

    // Selects a "LineEdit" entry (0-based) as the user does: record, then callback.
    void lineEdit(int index) {
        plugin.record<SparkPupStruct>("SparkPup20")->Value = index;
        plugin.callback("SparkPup20", 1, info);
    }

    // The handles the overlay draws (GL polygons), in drawing order.
    std::vector<Point> handles() {
        host().clearCalls();
        plugin.overlay(info, 1.0f);
        std::vector<Point> found;
        bool inPolygon = false;
        float sx = 0, sy = 0;
        int n = 0;
        for (const simhost::Call& call : host().calls()) {
            if (call.name == "glBegin") {
                inPolygon = call.args.at(0) == "9";
                sx = sy = 0;
                n = 0;
            } else if (call.name == "glVertex2f" && inPolygon) {
                sx += std::stof(call.args.at(0));
                sy += std::stof(call.args.at(1));
                ++n;
            } else if (call.name == "glEnd" && inPolygon && n > 0) {
                found.push_back({sx / n, sy / n});
                inPolygon = false;
            }
        }
        return found;
    }

    // Lines drawn in the colour of lines other than the current one.
    int otherLines() {
        int n = 0;
        for (const simhost::Call& call : host().callsNamed("glColor3f")) {
            n += std::stof(call.args.at(0)) < 0.31f && std::stof(call.args.at(2)) > 0.99f;
        }
        return n;
    }

    SparkInfoStruct info{};
};

TEST_F(ViewerThroughPlugin, CentreDragsWithCursorsAndRendersOnReleaseWithAutoPreview) {
    simhost::ViewerPointer pointer(plugin, info);
    auto* centreX = plugin.record<SparkFloatStruct>("SparkFloat13");
    auto* centreY = plugin.record<SparkFloatStruct>("SparkFloat14");
    auto* autoPreview = plugin.record<SparkBooleanStruct>("SparkBoolean34");

    host().clearCalls();
    pointer.move(100.0f, 50.0f);  // over the handle at the frame centre
    pointer.move(150.0f, 80.0f);  // off it
    EXPECT_EQ(host().callsNamed("sparkViewingCursor").size(), 2u);
    EXPECT_EQ(host().callsNamed("sparkViewingCursor")[0].str(), "sparkViewingCursor(20)");
    EXPECT_EQ(host().callsNamed("sparkViewingCursor")[1].str(), "sparkViewingCursor(1)");
    EXPECT_EQ(host().count("sparkViewingDraw"), 0);

    host().clearCalls();
    pointer.press(101.0f, 49.0f);
    EXPECT_TRUE(host().called("sparkViewingCursor(14)"));
    pointer.drag(140.0f, 30.0f);
    EXPECT_FLOAT_EQ(centreX->Value, 70.0f);
    EXPECT_FLOAT_EQ(centreY->Value, 30.0f);
    EXPECT_TRUE(host().called("sparkControlUpdate(13)"));
    EXPECT_TRUE(host().called("sparkControlUpdate(14)"));
    EXPECT_NE(pointer.release(140.0f, 30.0f), nullptr);  // Auto Preview: a new frame
    EXPECT_EQ(host().callsNamed("sparkViewingCursor").back().str(), "sparkViewingCursor(1)");
    EXPECT_EQ(host().count("sparkViewingDraw"), 3);

    autoPreview->Value = 0;
    plugin.overlay(info, 1.0f);
    pointer.press(140.0f, 30.0f);
    pointer.drag(60.0f, 40.0f);
    EXPECT_EQ(pointer.release(60.0f, 40.0f), nullptr);
    EXPECT_FLOAT_EQ(centreX->Value, 30.0f);
    // A press beside the handle grabs nothing and moves nothing.
    pointer.press(90.0f, 40.0f);
    pointer.drag(10.0f, 10.0f);
    EXPECT_EQ(pointer.release(10.0f, 10.0f), nullptr);
    EXPECT_FLOAT_EQ(centreX->Value, 30.0f);
}

TEST_F(ViewerThroughPlugin, LinesAreDrawnAndEditedInEveryMode) {
    simhost::ViewerPointer pointer(plugin, info);
    lineEdit(1);  // Add Line
    pointer.click(20.0f, 20.0f);
    pointer.click(100.0f, 25.0f);
    pointer.click(180.0f, 20.0f);
    std::vector<Point> points = handles();
    ASSERT_EQ(points.size(), 3u);  // one line of three points
    EXPECT_EQ(otherLines(), 0);

    lineEdit(0);  // away and back: the next click starts a second line
    lineEdit(1);
    pointer.click(20.0f, 80.0f);
    pointer.click(180.0f, 80.0f);
    EXPECT_EQ(handles().size(), 5u);
    EXPECT_EQ(otherLines(), 1);

    // Move Point: a press within 0.01 of the frame (2 units across) picks it.
    lineEdit(3);
    pointer.press(101.9f, 25.0f);
    pointer.drag(100.0f, 40.0f);
    pointer.release(100.0f, 40.0f);
    points = handles();
    bool moved = false;
    for (const Point& p : points)
        moved |= std::fabs(p.x - 100.0f) < 0.01f && std::fabs(p.y - 40.0f) < 0.01f;
    EXPECT_TRUE(moved);
    pointer.press(102.5f, 40.0f);  // 0.0125 of the width away: no pick
    pointer.drag(150.0f, 60.0f);
    pointer.release(150.0f, 60.0f);
    for (const Point& p : handles()) EXPECT_FALSE(std::fabs(p.x - 150.0f) < 0.01f);

    // Insert Point duplicates the picked point and drags the copy.
    lineEdit(5);
    pointer.press(180.0f, 80.0f);
    pointer.drag(190.0f, 90.0f);
    pointer.release(190.0f, 90.0f);
    EXPECT_EQ(handles().size(), 6u);

    // Delete Point acts on release over a point.
    lineEdit(4);
    pointer.click(190.0f, 90.0f);
    EXPECT_EQ(handles().size(), 5u);

    // Delete Line removes the line under the pointer, the first one here.
    lineEdit(2);
    pointer.click(20.0f, 20.0f);
    EXPECT_EQ(handles().size(), 2u);
}

namespace {

// The plain radial model of a frame, independent of the plug-in's code:
// u' = u (1 + k1 r² + k2 r⁴) about the centre, normalised by half the diagonal.
struct RadialModel {
    double k1, k2, cx, cy, R;
    void forward(double x, double y, double& ox, double& oy) const {
        const double u = (x - cx) / R, v = (y - cy) / R;
        const double r2 = u * u + v * v;
        const double f = 1.0 + k1 * r2 + k2 * r2 * r2;
        ox = u * f * R + cx;
        oy = v * f * R + cy;
    }
    // The point whose image is (x, y), by fixed-point iteration.
    void inverse(double x, double y, double& ix, double& iy) const {
        ix = x, iy = y;
        for (int i = 0; i < 200; ++i) {
            double fx, fy;
            forward(ix, iy, fx, fy);
            ix -= fx - x;
            iy -= fy - y;
        }
    }
};

}  // namespace

// A chart distorted in Mode Add with k1, k2 shows its straight rows and
// columns as curves through the inverse model's points. Clicked along those
// curves, the lines make AutoFind recover k1 and k2 within 0.005.
TEST_F(ViewerThroughPlugin, AutoFindFitsPointerDrawnLinesOfADistortedChart) {
    const double k1 = 0.1, k2 = 0.03;
    const RadialModel model{k1, k2, kWidth / 2.0, kHeight / 2.0,
                            std::sqrt(0.25 * kWidth * kWidth + 0.25 * kHeight * kHeight)};
    simhost::ViewerPointer pointer(plugin, info);
    auto drawLine = [&](bool row, double at) {
        lineEdit(0);
        lineEdit(1);
        for (int i = 0; i <= 8; ++i) {
            const double t = 0.05 + 0.9 * i / 8.0;
            double x, y;
            model.inverse(row ? t * kWidth : at, row ? at : t * kHeight, x, y);
            pointer.click(static_cast<float>(x), static_cast<float>(y));
        }
    };
    for (double y : {10.0, 50.0, 90.0}) drawLine(true, y);
    for (double x : {15.0, 185.0}) drawLine(false, x);
    lineEdit(0);

    plugin.callback("SparkPush22", 1, info);  // AutoFind
    EXPECT_EQ(host().count("sparkMessage"), 0);
    EXPECT_NEAR(plugin.record<SparkFloatStruct>("SparkFloat6")->Value, k1, 0.005);
    EXPECT_NEAR(plugin.record<SparkFloatStruct>("SparkFloat7")->Value, k2, 0.005);
    EXPECT_EQ(plugin.record<SparkPupStruct>("SparkPup23")->Value, 2);  // Mode: Auto Remove
}

// Drawn for real: the crosshair's arms land on the frame pixels about the
// centre, counted from the bottom, so the picture is not upside down; a drawn
// line lands on its pixels too.
TEST_F(ViewerThroughPlugin, OverlayPictureShowsTheCentreAndLinesWhereTheyAre) {
    std::string why;
    if (!simhost::Viewer::available(&why)) GTEST_SKIP() << why;
    plugin.record<SparkFloatStruct>("SparkFloat13")->Value = 40.0f;  // x 80
    plugin.record<SparkFloatStruct>("SparkFloat14")->Value = 30.0f;  // y 30 from the bottom
    simhost::ViewerImage picture;
    ASSERT_TRUE(simhost::Viewer().render(plugin, info, picture, &why)) << why;
    auto yellow = [](const unsigned char* p) { return p[0] > 200 && p[1] > 200 && p[2] < 50; };
    EXPECT_TRUE(yellow(picture.framePixel(80 + 18, 30)));                 // right arm
    EXPECT_TRUE(yellow(picture.framePixel(80, 30 + 18)));                 // upper arm
    EXPECT_TRUE(yellow(picture.framePixel(80, 30 - 18)));                 // lower arm
    EXPECT_FALSE(yellow(picture.framePixel(80 + 18, kHeight - 1 - 30)));  // no mirror image

    simhost::ViewerPointer pointer(plugin, info);
    lineEdit(1);
    pointer.click(20.0f, 70.0f);
    pointer.click(180.0f, 70.0f);
    lineEdit(0);
    ASSERT_TRUE(simhost::Viewer().render(plugin, info, picture, &why)) << why;
    const unsigned char* onLine = picture.framePixel(100, 70);
    EXPECT_GT(onLine[1] + onLine[2], 200)
        << "line pixel " << int(onLine[0]) << "," << int(onLine[1]) << "," << int(onLine[2]);
    const unsigned char* mirrored = picture.framePixel(100, kHeight - 1 - 70);
    EXPECT_EQ(mirrored[1] + mirrored[2], 0);
}
