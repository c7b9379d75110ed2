// Start-up through the simulated host: banner and buffer report, bit-depth
// mode, interface version warning, buffer shortage and the refused frames.
#include <string>
#include <vector>

#include "LoadedPlugin.h"

namespace {

const std::string kEquals(51, '=');
const std::string kPlus(51, '+');

std::string expectedReport(const std::string& modeLine, int available) {
    return kEquals + "\n" +
           "Marrowby 1.2.1 Halvane Zel-Straightlux for Discreet  \n"
           "    UCAPI  Built Oct 15 2008 at 14:33:51\n" +
           kEquals + "\n" + modeLine + "\n" + "Available buffers = " + std::to_string(available) +
           "\n" + kPlus + "\n\n";
}

const char kEightBit[] = "... 8-10 bit mode selected.";
const char kTwelveBit[] = "... 12 bit mode selected.";

}  // namespace

using PluginStartup = LoadedPlugin;

TEST_F(PluginStartup, PrintsBannerAndSetsTitles) {
    unsigned int level = 0;
    const std::string out = initialise(host().makeInfo(12, 12, 24, 1, "/tmp/setup_a"), &level);
    EXPECT_EQ(level, 2u);
    EXPECT_EQ(out, expectedReport(kEightBit, 8));
    EXPECT_EQ(host().count("sparkError"), 0);
    EXPECT_EQ(host().count("sparkMessage"), 0);

    for (const char* call :
         {"sparkLoadSetup(/tmp/setup_a)", "sparkControlTitle(3,Import AIFF)",
          "sparkControlTitle(0,Straightlux)", "sparkClipControlTitle(0,Input)",
          "sparkSetControlName(1,6,Radial1)", "sparkSetControlName(1,7,Radial2)",
          "sparkSetControlName(1,8,XCurvature)", "sparkSetControlName(1,9,YCurvature)",
          "sparkSetControlName(1,13,Centre X)", "sparkSetControlName(1,14,Centre Y)",
          "sparkSetControlName(1,16,Squeeze)", "sparkSetControlName(1,18,Magnify)"}) {
        EXPECT_TRUE(host().called(call)) << call;
    }
    EXPECT_EQ(host().count("sparkSetControlName"), 8);

    host().clearCalls();
    plugin.channelEditor();
    std::vector<std::string> layout;
    for (const simhost::Call& call : host().calls()) layout.push_back(call.str());
    const std::vector<std::string> expected = {
        "sparkCeAddFolder(1,Lens)",   "sparkCeAddControl(2,1,6)",  "sparkCeAddControl(2,1,7)",
        "sparkCeAddControl(2,1,8)",   "sparkCeAddControl(2,1,9)",  "sparkCeAddControl(2,1,13)",
        "sparkCeAddControl(2,1,14)",  "sparkCeAddControl(2,1,16)", "sparkCeAddControl(2,1,18)",
        "sparkCeAddFolder(1,Common)", "sparkCeAddControl(2,1,27)", "sparkCeAddControl(2,0,93)"};
    EXPECT_EQ(layout, expected);

    EXPECT_EQ(plugin.clips(), 1);
    EXPECT_EQ(plugin.processStart(host().makeInfo(12, 12, 24)), 1);
    plugin.uninitialise(host().makeInfo(12, 12, 24, 1, "/tmp/setup_b"));
    EXPECT_TRUE(host().called("sparkSaveSetup(/tmp/setup_b)"));
}

TEST_F(PluginStartup, FrameDepthSelectsTheMode) {
    struct Case {
        int depth;
        const char* mode;
    };
    for (const Case c : {Case{24, kEightBit}, Case{30, kEightBit}, Case{32, kEightBit},
                         Case{48, kTwelveBit}, Case{64, kTwelveBit}}) {
        EXPECT_EQ(initialise(host().makeInfo(4, 4, c.depth)), expectedReport(c.mode, 8))
            << "depth " << c.depth;
    }
}

TEST_F(PluginStartup, OldInterfaceOnlyWarns) {
    host().apiVersion = 3.9f;
    unsigned int level = 0;
    const std::string out = initialise(host().makeInfo(4, 4, 24), &level);
    EXPECT_TRUE(host().called(
        "sparkError(This version of \"Zel-Straightlux\" needs IFFFS 7.0/4.0 (sparks API 4.0) or "
        "higher.)"));
    EXPECT_EQ(level, 2u);
    EXPECT_EQ(out, expectedReport(kEightBit, 8));
    EXPECT_TRUE(host().called("sparkClipControlTitle(0,Input)"));
}

TEST_F(PluginStartup, TooFewBuffersRefusesEveryFrame) {
    host().freeBuffers = 1;
    const std::string out = initialise(host().makeInfo(4, 4, 48));
    EXPECT_EQ(out, kEquals + "\n" +
                       "Marrowby 1.2.1 Halvane Zel-Straightlux for Discreet  \n"
                       "    UCAPI  Built Oct 15 2008 at 14:33:51\n" +
                       kEquals + "\n" + kTwelveBit + "\nAvailable buffers = 1\n" + kPlus +
                       "\n\nERROR: we need 2 image buffers, but we only got 1.\n"
                       "... Processing will be turned off ...\n");
    EXPECT_TRUE(host().called("sparkMessage(Insufficient image buffers available! Giving up!)"));

    host().setBuffer(2, 4, 4, 48);
    simhost::FrameBuffer& output = host().setBuffer(1, 4, 4, 48);
    output.words()[0] = 0x1234;
    for (int frame = 0; frame < 2; ++frame) {
        host().clearCalls();
        EXPECT_EQ(plugin.process(host().makeInfo(4, 4, 48)), nullptr);
        EXPECT_TRUE(host().called(
            "sparkMessage( Zel-Straightlux cannot run due to insufficient buffers.)"));
        EXPECT_EQ(host().count("sparkMemGetBuffer"), 0);
        EXPECT_EQ(host().count("sparkGraphSetup"), 0);
        EXPECT_EQ(output.words()[0], 0x1234);
    }

    // Enough buffers at the next start-up turn processing back on.
    host().freeBuffers = 2;
    initialise(host().makeInfo(4, 4, 48));
    EXPECT_EQ(plugin.process(host().makeInfo(4, 4, 48)), output.storage.data());
}
