// sparkrun's viewer work end to end: the row order between image files and
// the host's frames, lines drawn with the pointer, AutoFind, the overlay
// picture, and the faults of each.
#include "SparkrunFixture.h"

namespace {

const char kFlatGrey = 100;

// A width x height 8-bit picture of one grey, with one pixel (x, y) of the
// file (top row first) bright red.
void writeGreyWithRedPixel(const std::string& file, int width, int height, int x, int y) {
    std::vector<unsigned char> samples(static_cast<size_t>(width) * height * 3, kFlatGrey);
    const size_t at = (static_cast<size_t>(y) * width + x) * 3;
    samples[at] = 250;
    samples[at + 1] = samples[at + 2] = 0;
    writePicture(file, width, height, 3, OIIO::TypeDesc::UINT8, samples);
}

void writeText(const std::string& file, const std::string& text) { std::ofstream(file) << text; }

float sampleAt(const Picture& picture, int x, int y, int channel) {
    return picture
        .samples[(static_cast<size_t>(y) * picture.width + x) * picture.channels + channel];
}

bool isGrey(const Picture& picture, int x, int y) {
    for (int c = 0; c < 3; ++c)
        if (sampleAt(picture, x, y, c) != kFlatGrey) return false;
    return true;
}

// Pixels whose red is full and green and blue nearly nothing: the error points.
int redPixels(const Picture& picture) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            if (sampleAt(picture, x, y, 0) > 240 && sampleAt(picture, x, y, 1) < 20 &&
                sampleAt(picture, x, y, 2) < 20)
                ++count;
    return count;
}

}  // namespace

// A file's top row is the host buffer's last row (the frame's top, y up),
// both into the plug-in and back out of it.
TEST_F(Sparkrun, ImageRowsReachTheHostBottomRowFirst) {
    for (const char* depth : {"8", "12"}) {
        SCOPED_TRACE(depth);
        writeGreyWithRedPixel(path("in.png"), 5, 4, 1, 0);
        ToolRun result = probe(std::string("--depth ") + depth +
                               " --set 'Report Brightest=on' --set 'Mark Row 0=on' " +
                               path("in.png") + " " + path("out/out.png"));
        ASSERT_EQ(result.code, 0) << result.err;
        // The plug-in's console reaches the tool's error stream.
        EXPECT_NE(result.err.find("probe: brightest at column 1, host row 3"), std::string::npos)
            << result.err;
        const Picture out = readPicture(path("out/out.png"));
        ASSERT_EQ(out.height, 4);
        const float full = out.bits == 16 ? 65535.0f : 255.0f;
        for (int y = 0; y < out.height; ++y)
            EXPECT_EQ(sampleAt(out, 2, y, 1) == full, y == out.height - 1) << "file row " << y;
    }
}

// A point given in image pixels (y down) is clicked where the plug-in sees
// that pixel, and the overlay picture shows it there, the right way up.
TEST_F(Sparkrun, LinesLandOnTheirPixelsAndTheOverlayIsTheRightWayUp) {
    const int width = 200, height = 120;
    writeGreyWithRedPixel(path("in.png"), width, height, 0, 0);
    writeText(path("lines.json"), "{\"lines\": [[[30, 15], [100, 15], [170, 15]]]}");
    ToolRun result =
        run("--set Mode=Remove --lines " + path("lines.json") + " --overlay " +
            path("out/overlay.png") + " " + path("in.png") + " " + path("out/out.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    const Picture overlay = readPicture(path("out/overlay.png"));
    ASSERT_EQ(overlay.width, width);
    ASSERT_EQ(overlay.height, height);
    // The input frame is the background: its red top-left pixel stays top left.
    EXPECT_EQ(sampleAt(overlay, 0, 0, 0), 250);
    EXPECT_EQ(sampleAt(overlay, 0, height - 1, 0), kFlatGrey);
    for (int x : {30, 100, 170}) {
        EXPECT_FALSE(isGrey(overlay, x, 15)) << "no handle at (" << x << ", 15)";
        EXPECT_TRUE(isGrey(overlay, x, height - 1 - 15)) << "a handle mirrored at x " << x;
    }
    // The frames written are the plug-in's own, not the overlay.
    EXPECT_TRUE(isGrey(readPicture(path("out/out.png")), 30, 15));
}

// The demonstration's workflow: trace the grid of a chart distorted by known
// coefficients, draw it, AutoFind, and write the corrected frame.
TEST_F(Sparkrun, LinesTracedOnADistortedChartFitTheLensThatDistortedIt) {
    ASSERT_EQ(run("--make-chart " + path("chart.png")).code, 0);
    ToolRun result = run("--set Mode=Add --set Radial1=0.12 --set Radial2=0.03 " +
                         path("chart.png") + " " + path("distorted.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result = run("--trace-chart " + path("distorted.png") + " " + path("lines.json"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("traced 8 grid lines"), std::string::npos) << result.out;

    result = run("--set Mode=Remove --overlay " + path("out/plain.png") + " --lines " +
                 path("lines.json") + " " + path("distorted.png") + " " + path("out/same.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result = run("--set Mode=Remove --lines " + path("lines.json") + " --autofind --overlay " +
                 path("out/fitted.png") + " --save-setup " + path("out/fit.setup") + " " +
                 path("distorted.png") + " " + path("out/corrected.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    double radial1 = 0, radial2 = 0;
    ASSERT_EQ(
        std::sscanf(result.out.c_str(), "autofind: Radial1=%lf Radial2=%lf", &radial1, &radial2), 2)
        << result.out;
    EXPECT_NEAR(radial1, 0.12, 0.005);
    EXPECT_NEAR(radial2, 0.03, 0.005);
    // The fit is applied to the frame written and kept in the set-up.
    result = run("--compare --margin 15 " + path("chart.png") + " " + path("out/corrected.png"));
    double corrected = 99;
    ASSERT_EQ(std::sscanf(result.out.c_str(), "mean abs difference %lf", &corrected), 1);
    EXPECT_LT(corrected, 5.0);
    const std::string setup = slurp(path("out/fit.setup"));
    EXPECT_NE(setup.find("Float 6 0.12"), std::string::npos) << setup;
    // After the fit the overlay adds the red error points.
    EXPECT_GT(redPixels(readPicture(path("out/fitted.png"))),
              redPixels(readPicture(path("out/plain.png"))) + 100);
}

TEST_F(Sparkrun, ViewerFaultsHaveTheirExitCodesAndWriteNothing) {
    writeGreyWithRedPixel(path("in.png"), 40, 30, 0, 0);
    writeText(path("broken.json"), "{\"lines\": [[[1, 2], [3, 4]]");
    writeText(path("outside.json"), "{\"lines\": [[[1, 2], [40, 4]]]}");
    writeText(path("short.json"), "{\"lines\": [[[1, 2], [30, 4]]]}");
    writeText(path("good.json"), "{\"lines\": [[[1, 2], [20, 3], [30, 4]]]}");
    const std::string io = " " + path("in.png") + " " + path("out/out.png");
    struct Case {
        std::string arguments;
        int code;
        std::string said;
    };
    const Case cases[] = {
        {"--lines " + path("broken.json") + io, 2, "line 1, column 28"},
        {"--lines " + path("outside.json") + io, 2, "lies outside the 40x30 frame"},
        {"--lines " + path("missing.json") + io, 3, "cannot open the lines file"},
        {"--autofind" + io, 2, "--autofind needs lines drawn"},
        {"--lines " + path("short.json") + " --autofind" + io, 2, "three points or more"},
        {"--lines " + path("good.json") + " --set 'Clear Overlay=on'" + io, 2, "Clear Overlay"},
        {"--lines " + path("good.json") + " --autofind --key Radial1@1=0.1" + io, 2,
         "animation keys"},
        {"--overlay " + path("out/out.png") + io, 2, "is also an OUTPUT frame"},
        {"--lines " + path("good.json") + " --list-controls", 2, "work on an INPUT and OUTPUT"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const ToolRun result = run(c.arguments);
        EXPECT_EQ(result.code, c.code) << result.err;
        EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
        EXPECT_TRUE(outputs().empty());
    }
    // A plug-in without a viewer cannot take lines.
    const ToolRun result = probe("--lines " + path("good.json") + io);
    EXPECT_EQ(result.code, 5) << result.err;
    EXPECT_NE(result.err.find("SparkOverlay"), std::string::npos) << result.err;
    EXPECT_TRUE(outputs().empty());
}

// Lines that cannot constrain AutoFind's fit: a doubled click (the plug-in's
// search then steps to Radial1 = Radial2 = 25000), and a thousand random
// lines whose fit leaves the controls' range. Either is refused, and no frame,
// overlay or set-up is written (a set-up out of range would not load again).
TEST_F(Sparkrun, AutoFindOnLinesThatDoNotConstrainItIsRefusedAndWritesNothing) {
    writeGreyWithRedPixel(path("in.png"), 960, 540, 0, 0);
    writeText(path("doubled.json"), "{\"lines\": [[[99, 102.7], [99, 102.7], [870, 102.9]]]}");
    std::string text = "{\"lines\": [";
    unsigned seed = 12345;
    auto next = [&seed](int size) {
        seed = seed * 1103515245u + 12345u;
        return static_cast<int>((seed >> 8) % static_cast<unsigned>(size));
    };
    for (int l = 0; l < 1000; ++l) {
        text += l ? ", [" : "[";
        for (int p = 0; p < 3; ++p)
            text += (p ? ", [" : "[") + std::to_string(next(960)) + ", " +
                    std::to_string(next(540)) + "]";
        text += "]";
    }
    writeText(path("random.json"), text + "]}");
    const std::string rest = " --autofind --overlay " + path("out/overlay.png") + " --save-setup " +
                             path("out/fit.setup") + " " + path("in.png") + " " +
                             path("out/out.png");
    ToolRun result = run("--lines " + path("doubled.json") + rest);
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_NE(result.err.find("warning: " + path("doubled.json") +
                              ": 1 pair(s) of consecutive points coincide, the first at line 1, "
                              "points 1 and 2 (99, 102.7)"),
              std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find("AutoFind refused: the lines do not constrain the fit"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(outputs().empty());
    result = run("--lines " + path("random.json") + rest);
    EXPECT_EQ(result.code, 2) << result.err;
    EXPECT_NE(result.err.find("AutoFind's fit left Radial1 at "), std::string::npos) << result.err;
    EXPECT_NE(result.err.find(", outside its range -1 .. 3: the lines do not constrain the fit"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(result.out.find("autofind:"), std::string::npos) << result.out;
    EXPECT_TRUE(outputs().empty());
}

// "Auto Preview" is off while the lines are drawn, and as it was afterwards
// (the saved set-up keeps it: Boolean 34).
TEST_F(Sparkrun, DrawingLinesLeavesAutoPreviewAsItWas) {
    writeGreyWithRedPixel(path("in.png"), 40, 30, 0, 0);
    writeText(path("lines.json"), "{\"lines\": [[[1, 2], [20, 3], [30, 4]], [[5, 5], [9, 25]]]}");
    for (const char* value : {"on", "off"}) {
        SCOPED_TRACE(value);
        const ToolRun result = run(std::string("--set 'Auto Preview=") + value + "' --lines " +
                                   path("lines.json") + " --save-setup " + path("s.setup") + " " +
                                   path("in.png") + " " + path("out/out.png"));
        ASSERT_EQ(result.code, 0) << result.err;
        EXPECT_NE(slurp(path("s.setup"))
                      .find(std::string("Boolean 34 ") + (value == std::string("on") ? "1" : "0")),
                  std::string::npos);
    }
}

// A float chart with a few infinite and not-a-number pixels: traced as the
// picture shows (above 1 white, below 0 or NaN black), and the lines file
// written reads back.
TEST_F(Sparkrun, AChartWithInfinitePixelsIsTracedIntoLinesThatReadBack) {
    ASSERT_EQ(run("--make-chart " + path("chart.png")).code, 0);
    const Picture chart = readPicture(path("chart.png"));
    std::vector<float> reals;
    for (float sample : chart.samples) reals.push_back(sample / 255.0f);
    // Every seventh pixel of rows 298 to 302 infinitely bright: the grid's
    // columns are sampled there, halfway between the rows at 270 and 330,
    // each sample's window holding some; a few pixels elsewhere -inf or NaN.
    for (size_t y = 298; y <= 302; ++y)
        for (size_t x = 3; x < static_cast<size_t>(chart.width); x += 7)
            std::fill_n(reals.begin() + (y * chart.width + x) * 3, 3, INFINITY);
    const float odd[] = {-INFINITY, NAN};
    for (size_t i = 0; i < 60; ++i) reals[(i * 7919 * 3) % reals.size()] = odd[i % 2];
    writePicture(path("chart.exr"), chart.width, chart.height, 3, OIIO::TypeDesc::FLOAT, reals);
    ToolRun result = run("--trace-chart " + path("chart.exr") + " " + path("lines.json"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("traced 8 grid lines"), std::string::npos) << result.out;
    EXPECT_EQ(slurp(path("lines.json")).find("nan"), std::string::npos);
    result =
        run("--lines " + path("lines.json") + " " + path("chart.png") + " " + path("out/out.png"));
    EXPECT_EQ(result.code, 0) << result.err;
}

// The viewer draws pictures of at most 16384 pixels a side: a wider frame's
// overlay is refused before the plug-in does any work.
TEST_F(Sparkrun, AnOverlayWiderThanTheViewerDrawsIsRefusedBeforeAnyWork) {
    writeGreyWithRedPixel(path("wide.png"), 16385, 2, 0, 0);
    const ToolRun result = run("--overlay " + path("out/overlay.png") + " " + path("wide.png") +
                               " " + path("out/out.png"));
    EXPECT_EQ(result.code, 4) << result.err;
    EXPECT_NE(result.err.find("--overlay draws pictures of at most 16384 pixels a side; the frame "
                              "is 16385x2"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(outputs().empty());
}
