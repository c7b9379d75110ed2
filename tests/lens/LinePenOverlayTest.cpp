// The lens plug-in's line pen and overlay: lines drawn and edited by pointer
// events in each "LineEdit" mode within the 0.01 pick tolerance, events
// routed to the centre crosshair in "No Action", and what a redraw draws.
#include <gtest/gtest.h>

#include "CrosshairOverlayZel.h"
#include "Library/DrawingRecorder.h"
#include "OverlayZel.h"
#include "PolyLineSet2DZel.h"
#include "StraightluxInfo.h"
#include "StraightluxLinePenOverlayZel.h"
#include "StraightluxOverlay.h"

using overlaytest::Primitive;
using overlaytest::primitives;
using overlaytest::startRecording;

namespace {

constexpr unsigned kLines = 1;
constexpr unsigned kPolygon = 9;

// The plug-in's members the overlay works on, on a 1000 x 500 frame: one
// overlay unit is 0.001 of the width and 0.002 of the height, so the 0.01
// tolerance is 10 units across and 5 up.
struct Rig {
    OverlayZel surface;
    CrosshairOverlayZel crosshair;
    StraightluxLinePenOverlayZel pen;
    double centreX = 0.5, centreY = 0.5;
    float penX = 0.75f, penY = 0.25f;
    bool newLine = true;
    int32_t lastLineEdit = kLineEditNoAction;
    PolyLineSet2DZel set;
    PolyLineSet2DZel* lines = &set;
    PolyLine2DZel* currentLine = nullptr;
    tagDPT2* errorPoints = nullptr;
    int32_t errorPointCount = 0;
    StraightluxOverlayParts parts{
        surface, crosshair,    pen,   centreX,     centreY,     penX,           penY,
        newLine, lastLineEdit, lines, currentLine, errorPoints, errorPointCount};

    Rig() {
        surface.frameWidth = 1000;
        surface.frameHeight = 500;
        crosshair.surface = &surface;
        pen.surface = &surface;
        startRecording();
    }
    // As the plug-in's LineEdit callback: coming to "Add Line" starts a new line.
    void setMode(int32_t value) {
        if (value == kLineEditAddLine && value != lastLineEdit) newLine = true;
        if (value == kLineEditNoAction) currentLine = nullptr;
        lastLineEdit = value;
    }
    void event(InterType type, float x, float y) {
        handleStraightluxInteraction(parts, type, x, y);
    }
    void click(float x, float y) {
        event(INTER_PRESS, x, y);
        event(INTER_RELEASE, x, y);
    }
    int lineCount() const {
        int n = 0;
        for (PolyLine2DZel* line = set.head; line; line = line->next) ++n;
        return n;
    }
};

void expectPoint(const PolyLine2DZel* line, int index, double x, double y) {
    ASSERT_NE(line, nullptr);
    ASSERT_LT(index, line->count);
    EXPECT_NEAR(line->points[index].x, x, 1e-6) << "point " << index;
    EXPECT_NEAR(line->points[index].y, y, 1e-6) << "point " << index;
}

}  // namespace

TEST(LinePenOverlay, ClicksInAddLineExtendOneLineUntilTheModeIsChosenAgain) {
    Rig rig;
    rig.setMode(kLineEditAddLine);
    rig.click(100, 100);
    rig.click(200, 110);
    // The point goes where the button is released.
    rig.event(INTER_PRESS, 290, 100);
    rig.event(INTER_DRAG, 295, 110);
    rig.event(INTER_RELEASE, 300, 120);
    ASSERT_EQ(rig.lineCount(), 1);
    PolyLine2DZel* first = rig.set.head;
    EXPECT_EQ(rig.currentLine, first);
    EXPECT_FALSE(rig.newLine);
    ASSERT_EQ(first->count, 3);
    expectPoint(first, 0, 0.1, 0.2);
    expectPoint(first, 1, 0.2, 0.22);
    expectPoint(first, 2, 0.3, 0.24);
    // The pen follows every event, on the pen and on the plug-in.
    EXPECT_FLOAT_EQ(rig.penX, 0.3f);
    EXPECT_FLOAT_EQ(rig.pen.penY, 0.24f);
    rig.event(INTER_MOVE, 500, 250);
    EXPECT_FLOAT_EQ(rig.penX, 0.5f);
    EXPECT_FLOAT_EQ(rig.penY, 0.5f);
    EXPECT_EQ(first->count, 3);

    // Choosing "Add Line" again starts a second line.
    rig.setMode(kLineEditNoAction);
    rig.setMode(kLineEditAddLine);
    rig.click(600, 400);
    ASSERT_EQ(rig.lineCount(), 2);
    EXPECT_EQ(rig.set.head->next, first);
    EXPECT_EQ(rig.currentLine, rig.set.head);
    ASSERT_EQ(rig.set.head->count, 1);
    expectPoint(rig.set.head, 0, 0.6, 0.8);
}

TEST(LinePenOverlay, MoveAndInsertPointDragThePointPickedWithinTheTolerance) {
    Rig rig;
    rig.setMode(kLineEditAddLine);
    rig.click(100, 100);
    rig.click(300, 100);

    rig.setMode(kLineEditMovePoint);
    // 10.5 units right of point 1 is 0.0105 away: outside, nothing armed.
    rig.event(INTER_PRESS, 310.5f, 100);
    EXPECT_EQ(rig.pen.armed, 0);
    EXPECT_EQ(rig.pen.pressed, 1);
    EXPECT_EQ(rig.currentLine, nullptr);
    rig.event(INTER_DRAG, 400, 200);
    rig.event(INTER_RELEASE, 400, 200);
    PolyLine2DZel* line = rig.set.head;
    expectPoint(line, 1, 0.3, 0.2);

    // 9.5 units right: inside; the point follows the drag.
    rig.event(INTER_PRESS, 309.5f, 100);
    EXPECT_EQ(rig.pen.armed, 1);
    EXPECT_EQ(rig.currentLine, line);
    expectPoint(line, 1, 0.3095, 0.2);  // moved to the pointer at once
    rig.event(INTER_DRAG, 400, 200);
    expectPoint(line, 1, 0.4, 0.4);
    rig.event(INTER_RELEASE, 450, 250);
    expectPoint(line, 1, 0.45, 0.5);
    EXPECT_EQ(rig.pen.armed, 0);
    rig.event(INTER_DRAG, 600, 300);  // released: no longer armed
    expectPoint(line, 1, 0.45, 0.5);
    rig.event(INTER_PRESS, 100, 104.5f);
    rig.event(INTER_RELEASE, 100, 104.5f);
    expectPoint(line, 0, 0.1, 0.209);

    // Insert: the picked point stays, its copy after it follows the pointer.
    rig.setMode(kLineEditInsertPoint);
    rig.event(INTER_PRESS, 100, 104.5f);
    ASSERT_EQ(line->count, 3);
    rig.event(INTER_DRAG, 200, 150);
    rig.event(INTER_RELEASE, 200, 150);
    expectPoint(line, 0, 0.1, 0.209);
    expectPoint(line, 1, 0.2, 0.3);
    expectPoint(line, 2, 0.45, 0.5);
}

TEST(LinePenOverlay, DeletionsActOnReleaseOnlyOnAPointOfThePickedLine) {
    Rig rig;
    rig.setMode(kLineEditAddLine);
    rig.click(100, 100);
    rig.click(300, 100);
    PolyLine2DZel* older = rig.set.head;
    rig.setMode(kLineEditNoAction);
    rig.setMode(kLineEditAddLine);
    rig.click(500, 400);
    PolyLine2DZel* newer = rig.set.head;
    ASSERT_NE(newer, older);

    // Delete Point: released away from the point, nothing goes.
    rig.setMode(kLineEditDeletePoint);
    rig.event(INTER_PRESS, 300, 100);
    rig.event(INTER_RELEASE, 320, 100);
    EXPECT_EQ(older->count, 2);
    rig.click(300, 100);
    ASSERT_EQ(older->count, 1);
    expectPoint(older, 0, 0.1, 0.2);
    // The last point of a line goes too; the empty line stays in the set.
    rig.click(500, 400);
    EXPECT_EQ(newer->count, 0);
    EXPECT_EQ(rig.lineCount(), 2);

    // Delete Line: released away from the line, it stays; on it, it goes.
    rig.setMode(kLineEditDeleteLine);
    rig.event(INTER_PRESS, 100, 100);
    rig.event(INTER_RELEASE, 130, 100);
    EXPECT_EQ(rig.lineCount(), 2);
    EXPECT_EQ(rig.currentLine, older);
    rig.event(INTER_PRESS, 100, 100);
    rig.event(INTER_RELEASE, 104, 102);
    EXPECT_EQ(rig.lineCount(), 1);
    EXPECT_EQ(rig.set.head, newer);
    EXPECT_EQ(rig.currentLine, nullptr);
    // A press on empty space picks nothing.
    rig.click(900, 50);
    EXPECT_EQ(rig.lineCount(), 1);
    EXPECT_EQ(rig.currentLine, nullptr);
}

TEST(LinePenOverlay, NoActionMovesTheCentreCrosshairAndDrawsNoPen) {
    Rig rig;
    float xValue = 50, xMin = 0, xMax = 100, yValue = 50, yMin = 0, yMax = 100;
    rig.crosshair.bind(13, {&xValue, &xMin, &xMax}, {&yValue, &yMin, &yMax});
    rig.centreX = 0.25;
    rig.centreY = 0.5;
    renderStraightluxOverlay(rig.parts);
    // The crosshair (four arms) and its handle at the centre; no pen cursor.
    ASSERT_EQ(primitives().size(), 5u);
    EXPECT_EQ(primitives()[0].vertices[0].x, 260.0f);  // 250 + 10
    EXPECT_EQ(primitives()[0].vertices[0].y, 250.0f);
    EXPECT_EQ(primitives()[4].mode, kPolygon);

    rig.event(INTER_PRESS, 250, 250);
    rig.event(INTER_DRAG, 400, 100);
    rig.event(INTER_RELEASE, 400, 100);
    EXPECT_FLOAT_EQ(xValue, 40.0f);
    EXPECT_FLOAT_EQ(yValue, 20.0f);
    EXPECT_FLOAT_EQ(rig.penX, 0.75f);  // the pen did not see the events
    EXPECT_EQ(rig.lineCount(), 0);
}

TEST(LinePenOverlay, RedrawDrawsPenLinesRubberBandAndErrorPoints) {
    Rig rig;
    rig.setMode(kLineEditAddLine);
    rig.click(100, 100);
    rig.click(300, 100);
    rig.event(INTER_MOVE, 400, 300);  // pen at (0.4, 0.6)
    tagDPT2 marks[2] = {{12.5, 7.0}, {30.0, 40.0}};
    rig.errorPoints = marks;
    rig.errorPointCount = 2;

    startRecording();
    renderStraightluxOverlay(rig.parts);
    const std::vector<Primitive>& p = primitives();
    // Pen cross, 50 units each way; one segment with its two handles;
    // rubber band to the pen; two red error handles where they stand.
    ASSERT_EQ(p.size(), 2u + 3u + 1u + 2u);
    EXPECT_EQ(p[0].mode, kLines);
    EXPECT_EQ(p[0].vertices[0].x, 350.0f);
    EXPECT_EQ(p[0].vertices[1].x, 450.0f);
    EXPECT_EQ(p[1].vertices[0].y, 250.0f);
    EXPECT_EQ(p[1].vertices[1].y, 350.0f);
    EXPECT_FLOAT_EQ(p[2].colour[0], 20000 / 65535.0f);  // the current line's green
    EXPECT_FLOAT_EQ(p[2].colour[1], 1.0f);
    EXPECT_EQ(p[2].mode, kLines);
    EXPECT_FLOAT_EQ(p[2].vertices[0].x, 100.0f);
    EXPECT_FLOAT_EQ(p[2].vertices[1].x, 300.0f);
    EXPECT_EQ(p[3].mode, kPolygon);
    EXPECT_EQ(p[4].mode, kPolygon);
    EXPECT_FLOAT_EQ(p[5].vertices[0].x, 300.0f);  // rubber band
    EXPECT_FLOAT_EQ(p[5].vertices[1].x, 400.0f);
    EXPECT_FLOAT_EQ(p[5].vertices[1].y, 300.0f);
    EXPECT_EQ(p[6].mode, kPolygon);
    EXPECT_FLOAT_EQ(p[6].colour[0], 1.0f);
    EXPECT_FLOAT_EQ(p[6].colour[1], 0.0f);
    EXPECT_FLOAT_EQ(p[6].vertices[0].x, 12.5f - 5.0f);  // not scaled by the frame
    EXPECT_FLOAT_EQ(p[6].vertices[0].y, 7.0f - 5.0f);

    // Another line made the current one: the first is drawn in blue, as a
    // single handle once it has one point; no rubber band before a click.
    rig.setMode(kLineEditNoAction);
    rig.setMode(kLineEditAddLine);
    rig.errorPointCount = 0;
    rig.set.head->delete_point(1);
    startRecording();
    renderStraightluxOverlay(rig.parts);
    ASSERT_EQ(primitives().size(), 2u + 1u);
    EXPECT_EQ(primitives()[2].mode, kPolygon);
    EXPECT_FLOAT_EQ(primitives()[2].colour[2], 1.0f);
    EXPECT_FLOAT_EQ(primitives()[2].colour[1], 10000 / 65535.0f);
}
