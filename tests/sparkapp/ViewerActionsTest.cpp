// The viewer's work through the real plug-in in this process, where the
// simulated host records the plug-in's calls: what drawing a lines file
// costs in renders.
#include <SimHost.h>
#include <gtest/gtest.h>

#include "LinesFile.h"
#include "SparkSession.h"
#include "ViewerActions.h"

namespace {
const int kWidth = 64;
const int kHeight = 48;

// Renders: the plug-in's SparkProcess marks each with sparkCursorBusy.
int renders() { return simhost::Host::instance().count("sparkCursorBusy"); }
}  // namespace

// "Auto Preview" on: a render after every line the user adds. The lines of
// a file are drawn with it off, and it is set back on at the end (which
// renders once, as the host does when the user switches it on).
TEST(ViewerActions, LinesAreDrawnWithoutARenderForEachLine) {
    SparkSession session(true, 1);
    ASSERT_TRUE(session.load(STRAIGHTLUX_PLUGIN).ok());
    ASSERT_TRUE(session.start(kWidth, kHeight, 24, 1.0f, "").ok());
    const Control* preview = session.controls().named("Auto Preview", ControlKind::Check);
    ASSERT_NE(preview, nullptr);
    ASSERT_TRUE(static_cast<SparkBooleanStruct*>(preview->record)->Value);
    FilePixels picture;
    picture.width = kWidth;
    picture.height = kHeight;
    picture.words.assign(picture.sampleCount(), 30000);
    LinesFile lines;
    for (int l = 0; l < 20; ++l)
        lines.lines.push_back({{2.0 + l, 3.0}, {30.0, 20.0 + l}, {60.0, 40.0}});
    ViewerActions actions(session, 1, 1);
    ASSERT_TRUE(actions.show(picture).ok());
    const int before = renders();
    ASSERT_TRUE(actions.drawLines(lines).ok());
    EXPECT_LE(renders() - before, 1);
    EXPECT_TRUE(static_cast<SparkBooleanStruct*>(preview->record)->Value);
    EXPECT_TRUE(session.finish("").ok());
}
