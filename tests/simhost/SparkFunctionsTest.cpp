// Host functions answer from the scripted state and land in the call record.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "SimHost.h"

extern "C" void glVertex2f(float x, float y);
extern "C" void glColor4us(unsigned short r, unsigned short g, unsigned short b, unsigned short a);

using simhost::Host;

namespace {
char* text(const char* literal) { return const_cast<char*>(literal); }

std::string browserPath;
void browserChose(char* path) {
    browserPath = path;
    path[0] = 'X';  // the plug-in may write into the path it is handed
}
}  // namespace

TEST(SimHostFunctions, RecordsCallsWithTheirArgumentsInOrder) {
    Host& host = Host::instance();
    host.reset();
    sparkMessage(text("hello "));
    EXPECT_EQ(sparkSetControlName(1, 6, text("Radial1")), 1);
    sparkControlUpdate(27);
    sparkControlUpdate(33);
    glVertex2f(1.5f, -2.0f);
    glColor4us(65535, 0, 7, 65535);

    const auto calls = host.calls();
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_EQ(calls[0].str(), "sparkMessage(hello )");  // trailing blank kept
    EXPECT_EQ(calls[1].str(), "sparkSetControlName(1,6,Radial1)");
    EXPECT_TRUE(host.called("sparkControlUpdate(33)"));
    EXPECT_FALSE(host.called("sparkControlUpdate(3)"));
    EXPECT_EQ(host.count("sparkControlUpdate"), 2);
    ASSERT_EQ(host.callsNamed("sparkControlUpdate").size(), 2u);
    EXPECT_EQ(host.callsNamed("sparkControlUpdate")[1].args[0], "33");
    EXPECT_EQ(calls[4].str(), "glVertex2f(1.5,-2)");
    EXPECT_EQ(calls[5].str(), "glColor4us(65535,0,7,65535)");

    host.clearCalls();
    EXPECT_TRUE(host.calls().empty());
}

TEST(SimHostFunctions, AnswersFromScriptedState) {
    Host& host = Host::instance();
    host.reset();
    host.confirmAnswers = {0, 1};
    host.confirmDefault = 0;
    EXPECT_EQ(sparkMessageConfirm(text("sure?")), 0);
    EXPECT_EQ(sparkMessageConfirm(text("sure?")), 1);
    EXPECT_EQ(sparkMessageConfirm(text("sure?")), 0);  // queue empty: the default
    EXPECT_EQ(host.count("sparkMessageConfirm"), 3);
    // A host that asks its user answers through the sink, queue untouched.
    std::string asked;
    host.confirmAnswers = {0};
    host.confirmSink = [&asked](const std::string& question) {
        asked = question;
        return 1;
    };
    EXPECT_EQ(sparkMessageConfirm(text("reset?")), 1);
    EXPECT_EQ(asked, "reset?");
    EXPECT_EQ(host.confirmAnswers.size(), 1u);
    host.confirmSink = nullptr;
    // Page titles and viewer cursors reach the driving program.
    std::vector<int> cursors;
    host.cursorSink = [&cursors](int kind) { cursors.push_back(kind); };
    sparkViewingCursor(14);
    sparkViewingCursor(1);
    EXPECT_EQ(cursors, (std::vector<int>{14, 1}));
    sparkControlTitle(3, text("Import AIFF"));
    EXPECT_EQ(host.pageTitles[3], "Import AIFF");
    host.reset();
    EXPECT_TRUE(host.pageTitles.empty());
    EXPECT_FALSE(host.cursorSink);

    host.apiVersion = 3.5f;
    host.freeBuffers = 1;
    host.viewerRatio = 0.5f;
    host.pixelAspect = 1.5f;
    EXPECT_EQ(sparkAPIVersionInfo(), 3.5f);
    EXPECT_EQ(sparkMemGetFreeMemory(), 1);
    EXPECT_EQ(sparkGetViewerRatio(), 0.5f);
    EXPECT_STREQ(sparkProgramGetName(), "simhost");
    SparkGraphInfoStruct graph;
    sparkGraphSetup(&graph);
    EXPECT_EQ(graph.PixelAspectRatio, 1.5f);
    EXPECT_EQ(graph.GraphicsMaxX, 1920);
    EXPECT_EQ(graph.GraphicsMaxY, 1200);

    // The working directory fills at most FILENAME_MAX bytes, terminated.
    std::string dir(FILENAME_MAX + 10, 'd');
    host.workingDir = dir;
    std::string buffer(FILENAME_MAX + 1, '#');
    sparkWorkingDir(&buffer[0]);
    EXPECT_EQ(std::strlen(buffer.c_str()), size_t(FILENAME_MAX - 1));
    EXPECT_EQ(buffer[FILENAME_MAX], '#');

    // The browser hands the choice to the callback; an empty choice is a cancel.
    browserPath.clear();
    sparkFileBrowserDisplay(text("/tmp"), text(""), browserChose);
    EXPECT_EQ(browserPath, "");
    host.fileBrowserChoice = "/data/keys.txt";
    sparkFileBrowserDisplay(text("/tmp"), text("aiff"), browserChose);
    EXPECT_EQ(browserPath, "/data/keys.txt");
    EXPECT_EQ(host.fileBrowserChoice, "/data/keys.txt");
    EXPECT_TRUE(host.called("sparkFileBrowserDisplay(/tmp,aiff)"));
    // A program that shows a browser answers instead; its cancel is empty.
    std::string shown;
    host.fileBrowserSink = [&shown](const std::string& path, const std::string& extension) {
        shown = path + " " + extension;
        return std::string(shown == "/home aiff" ? "/home/chosen.aiff" : "");
    };
    sparkFileBrowserDisplay(text("/home"), text("aiff"), browserChose);
    EXPECT_EQ(shown, "/home aiff");
    EXPECT_EQ(browserPath, "/home/chosen.aiff");
    browserPath.clear();
    sparkFileBrowserDisplay(text("/tmp"), text("txt"), browserChose);
    EXPECT_EQ(browserPath, "");
    host.reset();
    EXPECT_FALSE(host.fileBrowserSink);
}

TEST(SimHostFunctions, DescribesFrameBuffers) {
    Host& host = Host::instance();
    host.reset();
    simhost::FrameBuffer& deep = host.setBuffer(1, 3, 2, 48);
    host.setBuffer(2, 5, 4, 24);
    host.failingBufferIds = {2};

    SparkMemBufStruct record;
    ASSERT_NE(sparkMemGetBuffer(1, &record), 0);
    EXPECT_EQ(record.Buffer, deep.storage.data());
    EXPECT_EQ(record.BufWidth, 3);
    EXPECT_EQ(record.BufHeight, 2);
    EXPECT_EQ(record.BufDepth, 48);
    EXPECT_EQ(record.Inc, 6);         // three 16-bit words
    EXPECT_EQ(record.Stride, 3 * 6);  // rows packed without padding
    EXPECT_EQ(record.BufSize, 3 * 2 * 6);
    EXPECT_EQ(record.BufFmt, SPARKBUF_RGB_48_3x12);
    EXPECT_EQ(record.BufState, MEMBUF_REGISTERED);
    EXPECT_EQ(sparkMemGetBuffer(2, &record), 0);  // scripted to fail
    EXPECT_EQ(sparkMemGetBuffer(9, &record), 0);  // no such buffer
    host.failingBufferIds.clear();
    ASSERT_NE(sparkMemGetBuffer(2, &record), 0);
    EXPECT_EQ(record.Inc, 3);
    EXPECT_EQ(record.Stride, 15);
    EXPECT_EQ(record.BufFmt, SPARKBUF_RGB_24_3x8);

    const SparkInfoStruct info = host.makeInfo(5, 4, 48, 7, "shot.setup");
    EXPECT_EQ(info.FramePixels, 20);
    EXPECT_EQ(info.FrameBytes, 120);
    EXPECT_EQ(info.FrameNo, 7u);
    EXPECT_EQ(info.NumProcessors, host.processors);
    EXPECT_STREQ(info.Name, "shot.setup");
    EXPECT_EQ(host.makeInfo(5, 4, 24).FrameBytes, 60);

    int asked[2] = {-1, -1};
    host.frameSource = [&](int clip, int frame, unsigned long* destination) {
        asked[0] = clip;
        asked[1] = frame;
        destination[0] = 42;
    };
    unsigned long frame[1] = {0};
    sparkGetFrame(0, 3, frame);
    EXPECT_EQ(asked[0], 0);
    EXPECT_EQ(asked[1], 3);
    EXPECT_EQ(frame[0], 42ul);
}

TEST(SimHostFunctions, CurvesInterpolateKeysAndHoldTheEnds) {
    Host& host = Host::instance();
    host.reset();
    EXPECT_EQ(sparkGetCurveValuef(1, 6, 3.0f), 0.0f);  // nothing to read

    sparkSetCurveKey(0, 93, 10, 1.0f);
    sparkSetCurveKey(0, 93, 20, 3.0f);
    sparkSetCurveKey(0, 93, 30, -1.0f);
    EXPECT_EQ(host.curveKeys[93].size(), 3u);
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, 15.0f), 2.0f);
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, 12.5f), 1.5f);
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, 25.0f), 1.0f);
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, 20.0f), 3.0f);
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, -4.0f), 1.0f);   // held before the first key
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 93, 99.0f), -1.0f);  // held after the last key
    EXPECT_TRUE(host.called("sparkGetCurveValuef(0,93,12.5)"));

    sparkSetCurveKey(0, 5, -2, 4.0f);  // one key: the same at every frame
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(0, 5, -1.5f), 4.0f);

    host.curveFn = [](int type, int control, float frame) {
        return static_cast<float>(type * 100 + control) + frame;
    };
    EXPECT_FLOAT_EQ(sparkGetCurveValuef(1, 93, 0.5f), 193.5f);  // the function comes first
}
