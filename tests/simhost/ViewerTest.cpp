// The viewer: a stand-in plug-in's overlay drawn through OSMesa lands on the
// frame pixels its frame coordinates name (origin lower left, picture rows
// top first), at full, double and half scale, over a background; the GL
// calls are still recorded; pointer gestures arrive as SparkInteract calls.
#include <gtest/gtest.h>

#include <string>

#include "SimHost.h"
#include "Viewer.h"
#include "ViewerPointer.h"

using simhost::Host;
using simhost::Plugin;
using simhost::Viewer;
using simhost::ViewerImage;
using simhost::ViewerPointer;

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 32;

enum class Colour { Clear, Red, Green, Blue, Other };

Colour colourAt(const unsigned char* p) {
    if (p[3] == 0 && p[0] == 0 && p[1] == 0 && p[2] == 0) return Colour::Clear;
    if (p[0] == 255 && p[1] == 0 && p[2] == 0 && p[3] == 255) return Colour::Red;
    if (p[0] == 0 && p[1] == 255 && p[2] == 0 && p[3] == 255) return Colour::Green;
    if (p[0] == 0 && p[1] == 0 && p[2] == 255 && p[3] == 255) return Colour::Blue;
    return Colour::Other;
}

class ViewerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(Viewer::available(&error)) << error;  // setup.sh installs OSMesa
        Host::instance().reset();
        ASSERT_TRUE(plugin.load(SIMHOST_VIEWER_MODULE, &error, true)) << error;
        info = Host::instance().makeInfo(kWidth, kHeight, 24);
    }
    Plugin plugin;
    SparkInfoStruct info{};
};

}  // namespace

TEST_F(ViewerTest, OverlayLandsOnTheFramePixelsItsCoordinatesName) {
    ViewerImage picture;
    std::string error;
    ASSERT_TRUE(Viewer(1.0f).render(plugin, info, picture, &error)) << error;
    ASSERT_EQ(picture.width, kWidth);
    ASSERT_EQ(picture.height, kHeight);

    // Frame row y = 10 is picture row 21 counted from the top: not upside down.
    EXPECT_EQ(colourAt(picture.pixel(30, kHeight - 1 - 10)), Colour::Red);
    EXPECT_EQ(colourAt(picture.pixel(30, 10)), Colour::Clear);
    for (int x : {0, 30, 62}) EXPECT_EQ(colourAt(picture.framePixel(x, 10)), Colour::Red) << x;
    EXPECT_EQ(colourAt(picture.framePixel(30, 9)), Colour::Clear);
    EXPECT_EQ(colourAt(picture.framePixel(30, 11)), Colour::Clear);
    // Column x = 5, all the way up; its neighbours stay clear.
    for (int y : {0, 20, 30}) EXPECT_EQ(colourAt(picture.framePixel(5, y)), Colour::Green) << y;
    EXPECT_EQ(colourAt(picture.framePixel(4, 20)), Colour::Clear);
    EXPECT_EQ(colourAt(picture.framePixel(6, 20)), Colour::Clear);
    // The square over frame pixel (20, 10) covers exactly that pixel.
    EXPECT_EQ(colourAt(picture.framePixel(20, 10)), Colour::Blue);
    EXPECT_EQ(colourAt(picture.framePixel(20, 12)), Colour::Clear);
    EXPECT_EQ(colourAt(picture.framePixel(22, 10)), Colour::Red);

    // Every call was recorded on the way, with the host's matrix set-up.
    Host& host = Host::instance();
    EXPECT_EQ(host.count("glBegin"), 3);
    EXPECT_EQ(host.count("glVertex2f"), 8);
    EXPECT_TRUE(host.called("glTranslatef(0,0,0)"));
    EXPECT_TRUE(host.called("glScalef(1,1,1)"));

    // Outside a render the calls are only recorded.
    host.clearCalls();
    plugin.overlay(info, 1.0f);
    EXPECT_EQ(host.count("glBegin"), 3);
}

TEST_F(ViewerTest, ScaleSpreadsOrShrinksFramePixelsAndCodesTheZoomAsAHostDoes) {
    ViewerImage picture;
    std::string error;
    ASSERT_TRUE(Viewer(2.0f).render(plugin, info, picture, &error)) << error;
    ASSERT_EQ(picture.width, 2 * kWidth);
    ASSERT_EQ(picture.height, 2 * kHeight);
    // Frame pixel (20, 10) is the 2 x 2 block from (40, 20).
    for (int x : {40, 41}) {
        for (int y : {20, 21}) EXPECT_EQ(colourAt(picture.framePixel(x, y)), Colour::Blue);
    }
    EXPECT_NE(colourAt(picture.framePixel(42, 20)), Colour::Blue);
    EXPECT_NE(colourAt(picture.framePixel(40, 22)), Colour::Blue);
    EXPECT_TRUE(Host::instance().called("glScalef(2,2,1)"));

    // Half size: the zoom argument is -2; frame row 10 is picture row 5 from
    // the bottom and frame column 5 is picture column 2 (5 / 2 + 1/4).
    Host::instance().clearCalls();
    EXPECT_EQ(Viewer(0.5f).zoomArgument(), -2.0f);
    ASSERT_TRUE(Viewer(0.5f).render(plugin, info, picture, &error)) << error;
    ASSERT_EQ(picture.width, kWidth / 2);
    ASSERT_EQ(picture.height, kHeight / 2);
    EXPECT_EQ(colourAt(picture.framePixel(20, 5)), Colour::Red);
    EXPECT_EQ(colourAt(picture.framePixel(20, 4)), Colour::Clear);
    EXPECT_EQ(colourAt(picture.framePixel(20, 6)), Colour::Clear);
    EXPECT_EQ(colourAt(picture.framePixel(2, 12)), Colour::Green);
    EXPECT_EQ(colourAt(picture.framePixel(3, 12)), Colour::Clear);
    EXPECT_TRUE(Host::instance().called("glScalef(0.5,0.5,1)"));

    // A wide viewer ratio widens the picture.
    Host::instance().viewerRatio = 1.5f;
    ASSERT_TRUE(Viewer(1.0f).render(plugin, info, picture, &error)) << error;
    EXPECT_EQ(picture.width, 96);
    EXPECT_EQ(picture.height, kHeight);
}

TEST_F(ViewerTest, BackgroundFrameShowsUnderTheOverlayTopRowFirst) {
    ViewerImage frame;
    frame.width = kWidth;
    frame.height = kHeight;
    frame.rgba.assign(kWidth * kHeight * 4, 40);
    // Mark the top-left pixel of the picture.
    unsigned char* topLeft = &frame.rgba[0];
    topLeft[0] = 200, topLeft[1] = 100, topLeft[2] = 50, topLeft[3] = 255;

    ViewerImage picture;
    std::string error;
    ASSERT_TRUE(Viewer(2.0f).render(plugin, info, picture, &error, &frame)) << error;
    for (int x : {0, 1}) {
        for (int r : {0, 1}) {
            const unsigned char* p = picture.pixel(x, r);
            EXPECT_EQ(p[0], 200);
            EXPECT_EQ(p[1], 100);
            EXPECT_EQ(p[2], 50);
        }
    }
    EXPECT_EQ(picture.pixel(2, 0)[0], 40);
    EXPECT_EQ(picture.pixel(60, 60)[1], 40);
    EXPECT_EQ(colourAt(picture.framePixel(40, 20)), Colour::Blue);

    // A background of another size is refused with a message.
    frame.width = 10;
    EXPECT_FALSE(Viewer(1.0f).render(plugin, info, picture, &error, &frame));
    EXPECT_NE(error.find("64x32"), std::string::npos) << error;
    SparkInfoStruct empty = Host::instance().makeInfo(0, 32, 24);
    EXPECT_FALSE(Viewer(1.0f).render(plugin, empty, picture, &error));
    EXPECT_NE(error.find("outside"), std::string::npos) << error;
}

TEST_F(ViewerTest, PointerGesturesBecomeInteractCallsInFrameUnits) {
    auto* calls = static_cast<float(*)[6]>(plugin.symbol("interactCalls"));
    auto* count = static_cast<int*>(plugin.symbol("interactCount"));
    ASSERT_NE(calls, nullptr);
    ASSERT_NE(count, nullptr);

    ViewerPointer pointer(plugin, info, 0.5f);
    pointer.move(2, 4);
    pointer.press(10, 20);
    pointer.drag(12, 21.5f);
    pointer.release(14, 22);
    pointer.click(30, 8);
    ASSERT_EQ(*count, 6);
    // SX, SY in screen pixels; pressure; VX, VY in frame units; zoom argument.
    const float expected[6][6] = {{1, 2, 0, 2, 4, -2},       {5, 10, 1, 10, 20, -2},
                                  {6, 11, 1, 12, 21.5f, -2}, {7, 11, 0, 14, 22, -2},
                                  {15, 4, 1, 30, 8, -2},     {15, 4, 0, 30, 8, -2}};
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 6; ++k) EXPECT_EQ(calls[i][k], expected[i][k]) << i << "," << k;
    }
}
