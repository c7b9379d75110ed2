// Overlay widgets: the strict square hit test, the drag rules of each kind,
// the percent-range clamps and what is written to the host's fields.
#include <gtest/gtest.h>

#include <cmath>

#include "AngleOverlayZel.h"
#include "CircleOverlayZel.h"
#include "CrosshairOverlayZel.h"
#include "DrawingRecorder.h"
#include "LineOverlayZel.h"
#include "OverlayZel.h"
#include "RectangleOverlayZel.h"

using overlaytest::recording;
using overlaytest::startRecording;

namespace {

const double kDegreesPerRadian = 180.0 / std::acos(-1.0);

// A host float record: value, minimum, maximum (percent for positions and sizes).
struct Record {
    float value, min, max;
    ZelFloatField field() { return {&value, &min, &max}; }
};

// A 200 x 100 frame at zoom 1: the pick radius is 5 frame units.
struct Frame {
    OverlayZel surface;
    Frame(float zoom = 1.0f) {
        surface.frameWidth = 200;
        surface.frameHeight = 100;
        surface.zoom = zoom;
        startRecording();
    }
};

std::vector<int> updates() { return recording().updates; }

}  // namespace

TEST(OverlayWidgets, PressExactlyAtThePickRadiusMisses) {
    for (float zoom : {1.0f, 2.0f}) {
        SCOPED_TRACE(zoom);
        Frame frame(zoom);
        const float r = 5.0f / zoom;
        CrosshairOverlayZel crosshair;
        crosshair.surface = &frame.surface;
        crosshair.x = 0.5f;
        crosshair.y = 0.5f;
        frame.surface.DrawCrosshairOverlay(&crosshair);  // handle at (100, 50)
        EXPECT_EQ(crosshair.handleX, 100.0f);
        EXPECT_EQ(crosshair.handleY, 50.0f);

        for (auto [x, y] : {std::pair{100 + r, 50.0f},
                            {100 - r, 50.0f},
                            {100.0f, 50 + r},
                            {100.0f, 50 - r},
                            {100 + r, 50 + r}}) {
            crosshair.HandleInteraction(INTER_PRESS, x, y);
            EXPECT_EQ(crosshair.selected, 0) << x << "," << y;
            EXPECT_EQ(crosshair.highlighted, 0);
        }
        // Just inside on both axes: a square test, not a circle.
        const float in = r * 0.98f;
        crosshair.HandleInteraction(INTER_MOVE, 100 + in, 50 - in);
        EXPECT_EQ(crosshair.highlighted, 1);
        EXPECT_EQ(crosshair.selected, 0);
        crosshair.HandleInteraction(INTER_PRESS, 100 + in, 50 - in);
        EXPECT_EQ(crosshair.selected, 1);
        EXPECT_EQ(crosshair.highlighted, 1);
        // A move off the handle drops the highlight, not the selection; a
        // release drops the selection and leaves the highlight.
        crosshair.HandleInteraction(INTER_MOVE, 150, 50);
        EXPECT_EQ(crosshair.highlighted, 0);
        EXPECT_EQ(crosshair.selected, 1);
        crosshair.HandleInteraction(INTER_MOVE, 100, 50);
        crosshair.HandleInteraction(INTER_RELEASE, 100, 50);
        EXPECT_EQ(crosshair.selected, 0);
        EXPECT_EQ(crosshair.highlighted, 1);
        // Unknown event kinds are ignored.
        crosshair.HandleInteraction(static_cast<InterType>(7), 100, 50);
        EXPECT_EQ(crosshair.selected, 0);
    }
}

TEST(OverlayWidgets, CrosshairDragClampsToTheFieldRangeInPercent) {
    Frame frame;
    Record xRecord{50, 10, 90}, yRecord{50, 0, 100};
    CrosshairOverlayZel crosshair;
    crosshair.surface = &frame.surface;
    crosshair.bind(13, xRecord.field(), yRecord.field());
    crosshair.x = crosshair.y = 0.5f;
    frame.surface.DrawCrosshairOverlay(&crosshair);

    // No handle picked: a drag changes and writes nothing.
    crosshair.HandleInteraction(INTER_PRESS, 10, 10);
    crosshair.HandleInteraction(INTER_DRAG, 190, 25);
    EXPECT_EQ(crosshair.x, 0.5f);
    EXPECT_EQ(xRecord.value, 50.0f);
    EXPECT_TRUE(updates().empty());

    crosshair.HandleInteraction(INTER_PRESS, 100, 50);
    crosshair.HandleInteraction(INTER_DRAG, 190, 25);  // x = 0.95, above 90 %
    EXPECT_EQ(crosshair.x, 0.9f);
    EXPECT_EQ(crosshair.y, 0.25f);
    EXPECT_EQ(xRecord.value, 90.0f);
    EXPECT_EQ(yRecord.value, 25.0f);
    EXPECT_EQ(updates(), (std::vector<int>{13, 14}));

    crosshair.HandleInteraction(INTER_DRAG, 10, 100);  // x = 0.05, below 10 %
    EXPECT_EQ(crosshair.x, 0.1f);
    EXPECT_EQ(xRecord.value, 10.0f);
    EXPECT_EQ(yRecord.value, 100.0f);

    // An inverted range: the minimum wins.
    xRecord.min = 60;
    xRecord.max = 40;
    crosshair.HandleInteraction(INTER_DRAG, 100, 50);
    EXPECT_EQ(crosshair.x, 0.6f);
    EXPECT_FLOAT_EQ(xRecord.value, 60.0f);  // 0.6f * 100 is a float step above 60

    // Released: drags go nowhere.
    crosshair.HandleInteraction(INTER_RELEASE, 100, 50);
    crosshair.HandleInteraction(INTER_DRAG, 20, 20);
    EXPECT_EQ(crosshair.x, 0.6f);
}

TEST(OverlayWidgets, LineRecentresOnThePointerAndItsEndClampLandsInTheStart) {
    Frame frame;
    Record startX{0, 0, 100}, startY{0, 0, 100}, endX{0, 30, 90}, endY{0, 0, 100};
    LineOverlayZel line;
    line.surface = &frame.surface;
    line.bind(40, startX.field(), startY.field(), 50, endX.field(), endY.field());
    line.x1 = 0.2f, line.y1 = 0.5f, line.x2 = 0.6f, line.y2 = 0.5f;
    frame.surface.DrawLineOverlay(&line);
    EXPECT_EQ(line.handleX, 80.0f);  // midpoint of (40, 50) and (120, 50)
    EXPECT_EQ(line.handleY, 50.0f);

    // Picked off-centre: the midpoint still jumps to the pointer.
    line.HandleInteraction(INTER_PRESS, 83, 52);
    ASSERT_EQ(line.selected, 1);
    line.HandleInteraction(INTER_DRAG, 100, 60);
    EXPECT_FLOAT_EQ(line.x1, 0.3f);
    EXPECT_FLOAT_EQ(line.x2, 0.7f);
    EXPECT_FLOAT_EQ(line.y1, 0.6f);
    EXPECT_FLOAT_EQ(line.y2, 0.6f);
    EXPECT_EQ(updates(), (std::vector<int>{40, 41, 50, 51}));

    // The end passes its 90 % maximum: x1 takes 0.9, x2 stays at 1.0.
    line.HandleInteraction(INTER_DRAG, 160, 50);
    EXPECT_FLOAT_EQ(line.x1, 0.9f);
    EXPECT_FLOAT_EQ(line.x2, 1.0f);
    EXPECT_FLOAT_EQ(startX.value, 90.0f);
    EXPECT_FLOAT_EQ(endX.value, 100.0f);

    // The end below its 30 % minimum: x1 takes 0.3 after its own clamp to 0.
    line.x1 = 0.2f, line.x2 = 0.6f;
    line.HandleInteraction(INTER_DRAG, 10, 50);  // x1 = -0.15, x2 = 0.25
    EXPECT_FLOAT_EQ(line.x1, 0.3f);
    EXPECT_FLOAT_EQ(line.x2, 0.25f);
    EXPECT_FLOAT_EQ(startX.value, 30.0f);
    EXPECT_FLOAT_EQ(endX.value, 25.0f);
}

TEST(OverlayWidgets, AngleFollowsThePointerWithTheAspectTakenOut) {
    Frame frame;
    frame.surface.aspectNumerator = 2.0f;
    Record angleRecord{0, -360, 360};
    AngleOverlayZel angle;
    angle.surface = &frame.surface;
    angle.bind(30, angleRecord.field());
    angle.pivotX = 0.5f, angle.pivotY = 0.5f, angle.radius = 0.1f, angle.angle = 0.0f;
    frame.surface.DrawAngleOverlay(&angle);  // pivot (100, 50), end (120, 50)
    EXPECT_FLOAT_EQ(angle.handleX, 120.0f);
    EXPECT_FLOAT_EQ(angle.handleY, 50.0f);

    angle.HandleInteraction(INTER_PRESS, 120, 50);
    ASSERT_EQ(angle.selected, 1);
    angle.HandleInteraction(INTER_DRAG, 100, 80);  // straight up
    EXPECT_FLOAT_EQ(angle.angle, 90.0f);
    EXPECT_FLOAT_EQ(angleRecord.value, 90.0f);  // degrees, no percent
    EXPECT_EQ(updates(), (std::vector<int>{30}));

    // Equal pixel offsets: the vertical one counts half at aspect 2.
    const double half = std::atan(0.5) * kDegreesPerRadian;
    angle.HandleInteraction(INTER_DRAG, 110, 60);
    EXPECT_NEAR(angle.angle, half, 1e-4);
    angle.HandleInteraction(INTER_DRAG, 90, 60);
    EXPECT_NEAR(angle.angle, 180 - half, 1e-4);
    angle.HandleInteraction(INTER_DRAG, 90, 40);
    EXPECT_NEAR(angle.angle, 180 + half, 1e-4);
    angle.HandleInteraction(INTER_DRAG, 110, 40);
    EXPECT_NEAR(angle.angle, 360 - half, 1e-4);

    // Drawn at 90 degrees the end is R * aspect above the pivot.
    angle.angle = 90.0f;
    frame.surface.DrawAngleOverlay(&angle);
    EXPECT_NEAR(angle.handleX, 100.0f, 1e-4);
    EXPECT_NEAR(angle.handleY, 90.0f, 1e-4);

    // Clamped in degrees against the record's range.
    angleRecord.max = 100;
    angle.HandleInteraction(INTER_DRAG, 90, 60);
    EXPECT_FLOAT_EQ(angle.angle, 100.0f);
    EXPECT_FLOAT_EQ(angleRecord.value, 100.0f);
}

TEST(OverlayWidgets, CircleHandlesResizeWithWidthBasedHeightAndLockKeepsOnlyTheWidth) {
    Frame frame;
    Record widthRecord{20, 0, 100}, heightRecord{10, 0, 100};
    CircleOverlayZel circle;
    circle.surface = &frame.surface;
    circle.bind(60, widthRecord.field(), 61, heightRecord.field());
    circle.centreX = 0.5f, circle.centreY = 0.5f, circle.width = 0.2f, circle.height = 0.1f;
    circle.locked = 1;
    frame.surface.DrawCircleOverlay(&circle);  // 40 x 20 about (100, 50)
    const double s = std::sqrt(0.5);
    EXPECT_NEAR(circle.handleX[0], 100 + 20 * s, 1e-4);  // handle 1, at -45 degrees
    EXPECT_NEAR(circle.handleY[0], 50 - 10 * s, 1e-4);
    EXPECT_NEAR(circle.handleX[1], 120, 1e-4);  // handle 2, at 0 degrees
    EXPECT_NEAR(circle.handleY[1], 50, 1e-4);
    EXPECT_NEAR(circle.handleX[2], 100, 1e-4);  // handle 3, at -90 degrees
    EXPECT_NEAR(circle.handleY[2], 40, 1e-4);

    // Locked: handles 1 and 3 cannot be picked; handle 2 changes the width only.
    circle.HandleInteraction(INTER_PRESS, 100, 40);
    EXPECT_EQ(circle.selected, 0);
    circle.HandleInteraction(INTER_PRESS, circle.handleX[0], circle.handleY[0]);
    EXPECT_EQ(circle.selected, 0);
    circle.HandleInteraction(INTER_PRESS, 120, 50);
    ASSERT_EQ(circle.selected, 2);
    circle.HandleInteraction(INTER_DRAG, 130, 50);
    EXPECT_FLOAT_EQ(circle.width, 0.3f);
    EXPECT_FLOAT_EQ(circle.height, 0.1f);
    EXPECT_FLOAT_EQ(widthRecord.value, 30.0f);
    EXPECT_FLOAT_EQ(heightRecord.value, 10.0f);
    EXPECT_EQ(updates(), (std::vector<int>{60}));
    circle.HandleInteraction(INTER_RELEASE, 130, 50);

    // Unlocked: handle 3 sets the height from the distance over W, not H.
    circle.locked = 0;
    circle.width = 0.2f;
    frame.surface.DrawCircleOverlay(&circle);
    circle.HandleInteraction(INTER_PRESS, 100, 40);
    ASSERT_EQ(circle.selected, 3);
    circle.HandleInteraction(INTER_DRAG, 100, 30);
    EXPECT_FLOAT_EQ(circle.height, 0.2f);  // 2 * 20 / 200
    EXPECT_FLOAT_EQ(heightRecord.value, 20.0f);
    EXPECT_FLOAT_EQ(circle.width, 0.2f);
    circle.HandleInteraction(INTER_RELEASE, 100, 30);

    // Handle 1 scales both with their ratio kept: half width 30 puts it at
    // x = 100 + 30 cos 45.
    circle.height = 0.1f;
    frame.surface.DrawCircleOverlay(&circle);
    startRecording();
    circle.HandleInteraction(INTER_PRESS, circle.handleX[0], circle.handleY[0]);
    ASSERT_EQ(circle.selected, 1);
    circle.HandleInteraction(INTER_DRAG, static_cast<float>(100 + 30 * s), 0);
    EXPECT_NEAR(circle.width, 0.3, 1e-6);
    EXPECT_NEAR(circle.height, 0.15, 1e-6);
    EXPECT_EQ(updates(), (std::vector<int>{60, 61}));
    circle.HandleInteraction(INTER_RELEASE, 0, 0);

    // With no handle picked a drag still clamps, and writes nothing.
    startRecording();
    circle.width = 0.95f;
    widthRecord.max = 90;
    circle.HandleInteraction(INTER_DRAG, 0, 0);
    EXPECT_FLOAT_EQ(circle.width, 0.9f);
    EXPECT_TRUE(updates().empty());
}

TEST(OverlayWidgets, RectangleCornerAndSideHandlesAndTheSquareFlag) {
    Frame frame;
    Record widthRecord{20, 0, 100}, heightRecord{20, 0, 100};
    RectangleOverlayZel rect;
    rect.surface = &frame.surface;
    rect.bind(70, widthRecord.field(), heightRecord.field());
    rect.centreX = 0.5f, rect.centreY = 0.5f, rect.width = 0.2f, rect.height = 0.2f;
    frame.surface.DrawRectangleOverlay(&rect);  // 40 x 20 about (100, 50)
    const float handles[3][2] = {{120, 60}, {120, 50}, {100, 60}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(rect.handleX[i], handles[i][0], 1e-4) << i;
        EXPECT_NEAR(rect.handleY[i], handles[i][1], 1e-4) << i;
    }

    // A move over a handle sets no highlight.
    rect.HandleInteraction(INTER_MOVE, 120, 60);
    EXPECT_EQ(rect.highlighted, 0);

    rect.HandleInteraction(INTER_PRESS, 120, 60);
    ASSERT_EQ(rect.selected, 1);
    rect.HandleInteraction(INTER_DRAG, 130, 70);
    EXPECT_FLOAT_EQ(rect.width, 0.3f);   // 2 * 30 / 200
    EXPECT_FLOAT_EQ(rect.height, 0.4f);  // 2 * 20 / 100
    EXPECT_FLOAT_EQ(widthRecord.value, 30.0f);
    EXPECT_FLOAT_EQ(heightRecord.value, 40.0f);
    EXPECT_EQ(updates(), (std::vector<int>{70, 71}));
    rect.HandleInteraction(INTER_RELEASE, 130, 70);

    // Turned by 90 degrees, handle 2 (the width side) sits above the centre.
    rect.width = 0.2f, rect.height = 0.2f, rect.angle = 90.0f;
    frame.surface.DrawRectangleOverlay(&rect);
    EXPECT_NEAR(rect.handleX[1], 100, 1e-4);
    EXPECT_NEAR(rect.handleY[1], 70, 1e-4);
    startRecording();
    rect.HandleInteraction(INTER_PRESS, 100, 70);
    ASSERT_EQ(rect.selected, 2);
    rect.HandleInteraction(INTER_DRAG, 100, 80);
    EXPECT_NEAR(rect.width, 0.3, 1e-6);
    EXPECT_EQ(updates(), (std::vector<int>{70}));
    rect.HandleInteraction(INTER_RELEASE, 100, 80);

    // Square: no handle 3, and only the width is written.
    rect.angle = 0.0f, rect.width = 0.2f, rect.square = 1;
    frame.surface.DrawRectangleOverlay(&rect);  // 40 x 40
    EXPECT_NEAR(rect.handleY[0], 70, 1e-4);
    rect.HandleInteraction(INTER_PRESS, rect.handleX[2], rect.handleY[2]);
    EXPECT_EQ(rect.selected, 0);
    startRecording();
    rect.HandleInteraction(INTER_PRESS, 120, 70);
    ASSERT_EQ(rect.selected, 1);
    rect.HandleInteraction(INTER_DRAG, 125, 80);  // the larger offset, 30, wins
    EXPECT_FLOAT_EQ(rect.width, 0.3f);
    EXPECT_EQ(updates(), (std::vector<int>{70}));
}

TEST(OverlayWidgets, WithoutAFrameEventsChangeNothing) {
    OverlayZel empty;  // no frame size yet
    Record xRecord{50, 0, 100}, yRecord{50, 0, 100};
    CrosshairOverlayZel crosshair;
    crosshair.bind(13, xRecord.field(), yRecord.field());
    crosshair.x = crosshair.y = 0.5f;
    startRecording();
    crosshair.HandleInteraction(INTER_PRESS, 0, 0);  // no surface at all
    EXPECT_EQ(crosshair.selected, 0);
    crosshair.surface = &empty;
    crosshair.selected = 1;
    crosshair.HandleInteraction(INTER_DRAG, 10, 10);
    EXPECT_EQ(crosshair.x, 0.5f);
    EXPECT_EQ(xRecord.value, 50.0f);
}
