// Overlay drawing primitives, read back from a recording drawing table:
// handle, crosshair, dotted line, ellipse, rectangle, arrow head, text and colour.
#include <gtest/gtest.h>

#include <cmath>

#include "DrawingRecorder.h"
#include "OverlayZel.h"

using overlaytest::Primitive;
using overlaytest::primitives;
using overlaytest::startRecording;

namespace {

constexpr unsigned kLines = 1;
constexpr unsigned kPolygon = 9;
const double kPi = std::acos(-1.0);

double rad(double degrees) { return degrees * kPi / 180.0; }

// One GL_LINES primitive from (x1, y1) to (x2, y2), within tolerance.
void expectLine(const Primitive& p, double x1, double y1, double x2, double y2,
                double tolerance = 0.0) {
    ASSERT_EQ(p.mode, kLines);
    ASSERT_EQ(p.vertices.size(), 2u);
    EXPECT_NEAR(p.vertices[0].x, x1, tolerance);
    EXPECT_NEAR(p.vertices[0].y, y1, tolerance);
    EXPECT_NEAR(p.vertices[1].x, x2, tolerance);
    EXPECT_NEAR(p.vertices[1].y, y2, tolerance);
}

OverlayZel surfaceAtZoom(float zoom) {
    OverlayZel surface;
    surface.frameWidth = 200;
    surface.frameHeight = 100;
    surface.zoom = zoom;
    return surface;
}

}  // namespace

TEST(OverlayPrimitives, HandleIsTenScreenPixelsSquareAndPickRadiusIsHalfOfIt) {
    OverlayZel surface = surfaceAtZoom(2.0f);
    startRecording();
    surface.DrawHandle(100.0f, 50.0f, true);
    surface.DrawHandle(100.0f, 50.0f, false);
    ASSERT_EQ(primitives().size(), 2u);
    // 10 screen pixels at zoom 2 are 5 frame units.
    const float expected[4][2] = {{97.5f, 47.5f}, {102.5f, 47.5f}, {102.5f, 52.5f}, {97.5f, 52.5f}};
    for (const Primitive& p : primitives()) {
        EXPECT_EQ(p.mode, kPolygon);
        ASSERT_EQ(p.vertices.size(), 4u);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(p.vertices[i].x, expected[i][0]);
            EXPECT_EQ(p.vertices[i].y, expected[i][1]);
        }
    }
    EXPECT_EQ(surface.GrabHandleSize(), 2.5f);
    EXPECT_EQ(surfaceAtZoom(0.5f).GrabHandleSize(), 10.0f);

    startRecording();
    surface.DrawPixel(3.0f, 4.0f);
    ASSERT_EQ(primitives().size(), 1u);
    EXPECT_EQ(primitives()[0].mode, 0u);
    EXPECT_EQ(primitives()[0].vertices.size(), 1u);
}

TEST(OverlayPrimitives, CrosshairArmsWithAndWithoutDiagonals) {
    OverlayZel surface = surfaceAtZoom(2.0f);
    startRecording();
    surface.DrawCrosshair(100.0f, 60.0f, 0);
    // Arms from 10 to 25 screen pixels: 5 to 12.5 frame units at zoom 2.
    ASSERT_EQ(primitives().size(), 4u);
    expectLine(primitives()[0], 105, 60, 112.5, 60);
    expectLine(primitives()[1], 95, 60, 87.5, 60);
    expectLine(primitives()[2], 100, 65, 100, 72.5);
    expectLine(primitives()[3], 100, 55, 100, 47.5);

    startRecording();
    surface.DrawCrosshair(100.0f, 60.0f, 1);
    ASSERT_EQ(primitives().size(), 8u);
    expectLine(primitives()[4], 102.5, 62.5, 106.25, 66.25);
    expectLine(primitives()[5], 97.5, 62.5, 93.75, 66.25);
    expectLine(primitives()[6], 102.5, 57.5, 106.25, 53.75);
    expectLine(primitives()[7], 97.5, 57.5, 93.75, 53.75);
}

TEST(OverlayPrimitives, DottedLineStartsWithAGapAndStopsAtItsEnd) {
    OverlayZel surface = surfaceAtZoom(1.0f);

    // 3.5 dashes: gap, dash, gap, then a dash cut at the end point.
    startRecording();
    surface.DrawLineDotted(0, 0, 35, 0, 10);
    ASSERT_EQ(primitives().size(), 2u);
    expectLine(primitives()[0], 10, 0, 20, 0);
    expectLine(primitives()[1], 30, 0, 35, 0);

    // The same walked backwards: the cut works against the direction of travel.
    startRecording();
    surface.DrawLineDotted(35, 0, 0, 0, 10);
    ASSERT_EQ(primitives().size(), 2u);
    expectLine(primitives()[0], 25, 0, 15, 0);
    expectLine(primitives()[1], 5, 0, 0, 0);

    // A slanted line of length 50 in dashes of 20: gap, one dash, a half gap.
    startRecording();
    surface.DrawLineDotted(30, 40, 0, 0, 20);
    ASSERT_EQ(primitives().size(), 1u);
    expectLine(primitives()[0], 18, 24, 6, 8, 1e-4);

    // Exactly two dashes long: only the second half is drawn.
    startRecording();
    surface.DrawLineDotted(0, 0, 0, 20, 10);
    ASSERT_EQ(primitives().size(), 1u);
    expectLine(primitives()[0], 0, 10, 0, 20);

    // A dash longer than the line is all gap; so is a point.
    startRecording();
    surface.DrawLineDotted(0, 0, 5, 0, 10);
    surface.DrawLineDotted(7, 7, 7, 7, 10);
    EXPECT_TRUE(primitives().empty());

    // No dash length or no end to walk to: nothing, rather than an endless walk.
    surface.DrawLineDotted(0, 0, 50, 0, 0);
    surface.DrawLineDotted(0, 0, INFINITY, 0, 10);
    surface.DrawLineDotted(0, 0, NAN, 0, 10);
    surface.DrawEllipse(100, 50, 10, 6, 0, 0, 0, 0, 360);
    surface.DrawEllipse(100, 50, 10, 6, 0, 0, 4, 0, INFINITY);
    EXPECT_TRUE(primitives().empty());
}

TEST(OverlayPrimitives, EllipseClosedOpenDottedAndTooSmall) {
    OverlayZel surface = surfaceAtZoom(1.0f);
    // Width 10, dash 4: pi * 10 / 4 = 7.85 dashes would give 45.8 degrees,
    // capped at 36: points at 0, 36, ..., 360.
    auto point = [](int k) {
        return std::make_pair(100 + 5 * std::cos(rad(36.0 * k)), 50 + 3 * std::sin(rad(36.0 * k)));
    };
    startRecording();
    surface.DrawEllipse(100, 50, 10, 6, 0, 0, 4, 0, 360);
    ASSERT_EQ(primitives().size(), 12u);
    // A zero-length line at the first point, then each point back to the one before.
    expectLine(primitives()[0], 105, 50, 105, 50, 1e-4);
    for (int k = 1; k <= 10; ++k) {
        SCOPED_TRACE(k);
        expectLine(primitives()[k], point(k).first, point(k).second, point(k - 1).first,
                   point(k - 1).second, 1e-4);
    }
    // Closed from the point at angle 0 to the last point.
    expectLine(primitives()[11], 105, 50, point(10).first, point(10).second, 1e-4);

    // Up to 359 degrees: open, nine segments after the first point.
    startRecording();
    surface.DrawEllipse(100, 50, 10, 6, 0, 0, 4, 0, 359);
    ASSERT_EQ(primitives().size(), 10u);
    expectLine(primitives()[9], point(9).first, point(9).second, point(8).first, point(8).second,
               1e-4);

    // Dotted: segments 1, 3, 5, 7, 9 and the closing line.
    startRecording();
    surface.DrawEllipse(100, 50, 10, 6, 0, 1, 4, 0, 360);
    ASSERT_EQ(primitives().size(), 6u);
    expectLine(primitives()[0], point(1).first, point(1).second, 105, 50, 1e-4);
    expectLine(primitives()[4], point(9).first, point(9).second, point(8).first, point(8).second,
               1e-4);

    // Turned by 90 degrees the point at angle 0 is straight above the centre.
    startRecording();
    surface.DrawEllipse(100, 50, 10, 6, 90, 0, 4, 0, 360);
    expectLine(primitives()[0], 100, 55, 100, 55, 1e-4);

    // Below 5 units across either way nothing is drawn.
    startRecording();
    surface.DrawEllipse(100, 50, 4.9f, 60, 0, 0, 4, 0, 360);
    surface.DrawEllipse(100, 50, 60, 4.9f, 0, 0, 4, 0, 360);
    EXPECT_TRUE(primitives().empty());
}

TEST(OverlayPrimitives, RectangleCornersFollowAngleAndAspect) {
    OverlayZel surface = surfaceAtZoom(1.0f);
    surface.aspectNumerator = 2.0f;
    startRecording();
    surface.DrawRectangle(100, 50, 40, 20, 0, 0, 0);
    ASSERT_EQ(primitives().size(), 4u);
    expectLine(primitives()[0], 120, 60, 120, 40);
    expectLine(primitives()[1], 120, 40, 80, 40);
    expectLine(primitives()[2], 80, 40, 80, 60);
    expectLine(primitives()[3], 80, 60, 120, 60);

    // Turned by 90 degrees at aspect 2: corner (20, 5) turns to (-5, 20), y doubled.
    startRecording();
    surface.DrawRectangle(100, 50, 40, 20, 90, 0, 0);
    ASSERT_EQ(primitives().size(), 4u);
    expectLine(primitives()[0], 95, 90, 105, 90, 1e-4);

    // Dotted edges: each 40-long edge in dashes of 10 draws two dashes.
    surface.aspectNumerator = 1.0f;
    startRecording();
    surface.DrawRectangle(100, 50, 40, 40, 0, 1, 10);
    ASSERT_EQ(primitives().size(), 8u);
    expectLine(primitives()[0], 120, 60, 120, 50);
}

TEST(OverlayPrimitives, ArrowBarbsSpreadTwentyDegreesAboutTheLine) {
    OverlayZel surface = surfaceAtZoom(2.0f);  // barbs 40 / 2 = 20 long
    const double len = 20.0;
    struct Case {
        float x2, y2;
        double towards;  // direction from the head to (x2, y2), degrees
    } cases[] = {{100, 0, 0}, {0, 100, 90}, {-10, -10, 225}, {-10, 10, 135}, {10, -10, 315}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.towards);
        startRecording();
        surface.DrawArrow(0, 0, c.x2, c.y2);
        ASSERT_EQ(primitives().size(), 2u);
        expectLine(primitives()[0], 0, 0, len * std::cos(rad(c.towards + 20)),
                   len * std::sin(rad(c.towards + 20)), 1e-4);
        expectLine(primitives()[1], 0, 0, len * std::cos(rad(c.towards - 20)),
                   len * std::sin(rad(c.towards - 20)), 1e-4);
    }
}

TEST(OverlayPrimitives, TextStrokesSimplexGlyphsAndSkipsBytesOutsideTheTable) {
    OverlayZel surface = surfaceAtZoom(2.0f);
    // 'A' of the simplex font: advance 18, strokes (9,21)-(1,0), (9,21)-(17,0), (4,7)-(14,7).
    startRecording();
    EXPECT_EQ(surface.DrawText(100, 50, "A", 2.0f, 2.0f, 1), 36.0f);
    ASSERT_EQ(primitives().size(), 3u);
    // x in frame units: 100 + vx * 2 / 2; y in screen units: (50 + vy * 2) / 2.
    expectLine(primitives()[0], 109, 46, 101, 25);
    expectLine(primitives()[1], 109, 46, 117, 25);
    expectLine(primitives()[2], 104, 32, 114, 32);

    // 'B' follows at the advance of 'A': its first stroke is (4,21)-(4,0).
    startRecording();
    EXPECT_EQ(surface.DrawText(100, 50, "AB", 1.0f, 1.0f, 1), 18.0f + 21.0f);
    ASSERT_GT(primitives().size(), 3u);
    expectLine(primitives()[3], 100 + (18 + 4) / 2.0, 21 / 2.0 + 25, 100 + (18 + 4) / 2.0, 25);
    const size_t linesOfAB = primitives().size();

    // Bytes above 127, control characters and DEL advance and draw nothing.
    startRecording();
    EXPECT_EQ(surface.DrawText(100, 50,
                               "\tA\xc3\xa9\x7f"
                               "B\n",
                               1.0f, 1.0f, 1),
              39.0f);
    EXPECT_EQ(primitives().size(), linesOfAB);

    // Measuring only: the same advance, nothing drawn; a space is 16 wide.
    startRecording();
    EXPECT_EQ(surface.DrawText(0, 0, "A B", 0.5f, 1.0f, 0), (18 + 16 + 21) * 0.5f);
    EXPECT_TRUE(primitives().empty());
}

TEST(OverlayPrimitives, ColourTakesSixteenBitChannelsAndIgnoresAlpha) {
    OverlayZel surface = surfaceAtZoom(1.0f);
    startRecording();
    surface.SetColour(65535, 0, 13107, 12);
    surface.DrawLine(0, 0, 1, 1);
    ASSERT_EQ(primitives().size(), 1u);
    EXPECT_FLOAT_EQ(primitives()[0].colour[0], 1.0f);
    EXPECT_FLOAT_EQ(primitives()[0].colour[1], 0.0f);
    EXPECT_FLOAT_EQ(primitives()[0].colour[2], 0.2f);
}
