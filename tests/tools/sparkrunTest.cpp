// End-to-end tests of sparkrun: images made here with OpenImageIO go through
// the built tool binary; outputs, exit codes and messages are checked.
#include "SparkrunFixture.h"

TEST_F(Sparkrun, FilesComeBackThroughTheDefaultSetupWithinTheHostRounding) {
    // 8-bit colour, value-coded: exact.
    std::vector<unsigned char> eight;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            for (int c = 0; c < 3; ++c)
                eight.push_back(static_cast<unsigned char>(x + 10 * y + 50 * c));
    writePicture(path("in8.png"), 5, 4, 3, OIIO::TypeDesc::UINT8, eight);
    ToolRun result = run(path("in8.png") + " " + path("out/out8.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    Picture back = readPicture(path("out/out8.png"));
    ASSERT_EQ(back.bits, 8);
    ASSERT_EQ(back.channels, 3);
    for (size_t i = 0; i < eight.size(); ++i) EXPECT_EQ(back.samples[i], eight[i]) << i;

    // 16-bit colour runs at 12 bits: each sample is the nearest 12-bit level
    // scaled back, so within one 12-bit step.
    std::vector<unsigned short> sixteen;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            for (int c = 0; c < 3; ++c)
                sixteen.push_back(static_cast<unsigned short>(13000 * x + 1500 * y + 333 * c + 7));
    writePicture(path("in16.tif"), 5, 4, 3, OIIO::TypeDesc::UINT16, sixteen);
    result = run("--verbose " + path("in16.tif") + " " + path("out/out16.tif"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("12 bits"), std::string::npos) << result.out;
    back = readPicture(path("out/out16.tif"));
    ASSERT_EQ(back.bits, 16);
    for (size_t i = 0; i < sixteen.size(); ++i) {
        const double level = std::round(sixteen[i] * 4095.0 / 65535.0);
        EXPECT_EQ(back.samples[i], std::round(level * 65535.0 / 4095.0)) << i;
        EXPECT_LE(std::fabs(back.samples[i] - sixteen[i]), kTwelveBitStep) << i;
    }

    // Grey with alpha: the grey goes to all three channels, the alpha is dropped.
    writePicture(path("grey.png"), 3, 2, 2, OIIO::TypeDesc::UINT8,
                 std::vector<unsigned char>{0, 255, 10, 9, 20, 0, 30, 255, 40, 1, 250, 255});
    result = run(path("grey.png") + " " + path("out/grey.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    back = readPicture(path("out/grey.png"));
    ASSERT_EQ(back.channels, 3);
    const float greys[] = {0, 10, 20, 30, 40, 250};
    for (int p = 0; p < 6; ++p)
        for (int c = 0; c < 3; ++c) EXPECT_EQ(back.samples[p * 3 + c], greys[p]) << p;

    // Float (OpenEXR) in and out: within half a 12-bit level.
    const std::vector<float> reals = {0.0f,  0.25f, 0.5f, 1.0f, 0.125f, 0.75f, 0.3f,  0.6f,  0.9f,
                                      0.01f, 0.99f, 0.5f, 0.2f, 0.4f,   0.8f,  0.05f, 0.15f, 0.35f};
    writePicture(path("in.exr"), 3, 2, 3, OIIO::TypeDesc::FLOAT, reals);
    result = run(path("in.exr") + " " + path("out/out.exr"));
    ASSERT_EQ(result.code, 0) << result.err;
    back = readPicture(path("out/out.exr"));
    for (size_t i = 0; i < reals.size(); ++i)
        EXPECT_NEAR(back.samples[i], reals[i], 0.5 / 4095 + 1e-6) << i;
}

TEST_F(Sparkrun, ControlsAreSetByTheirTitles) {
    // 3x2, value-coded 8-bit: Gain 50 halves (truncating), Red Only zeroes
    // green and blue, Invert gives 255 - v.
    std::vector<unsigned char> coded;
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            for (int c = 0; c < 3; ++c)
                coded.push_back(static_cast<unsigned char>(20 + 40 * x + 100 * y + 11 * c));
    writePicture(path("in.png"), 3, 2, 3, OIIO::TypeDesc::UINT8, coded);
    ToolRun result = probe("--set gain=50 --set 'Channels=red only' --set Invert=on " +
                           path("in.png") + " " + path("out/out.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    Picture back = readPicture(path("out/out.png"));
    for (size_t i = 0; i < coded.size(); ++i) {
        const int expected = i % 3 == 0 ? 255 - coded[i] / 2 : 255;
        EXPECT_EQ(back.samples[i], expected) << i;
    }
    // The plug-in's console output goes to stderr, never into the tool's stdout.
    EXPECT_EQ(result.out.find("probe plug-in started"), std::string::npos);
    EXPECT_NE(result.err.find("probe plug-in started"), std::string::npos);

    // At 12 bits: Gain 50 halves the 12-bit level.
    const std::vector<unsigned short> sixteen = {0,     1000,  2000,  30000, 40000, 65535,
                                                 12345, 23456, 34567, 45678, 56789, 65000,
                                                 100,   200,   300,   400,   500,   600};
    writePicture(path("in.tif"), 3, 2, 3, OIIO::TypeDesc::UINT16, sixteen);
    result = probe("--set Gain=50 " + path("in.tif") + " " + path("out/out.tif"));
    ASSERT_EQ(result.code, 0) << result.err;
    back = readPicture(path("out/out.tif"));
    for (size_t i = 0; i < sixteen.size(); ++i) {
        const long level = std::lround(sixteen[i] * 4095.0 / 65535.0) / 2;
        EXPECT_EQ(back.samples[i], std::round(level * 65535.0 / 4095.0)) << i;
    }

    // --depth 8 on a 16-bit input runs at 8 bits and writes 8 bits.
    result = probe("--depth 8 " + path("in.tif") + " " + path("out/eight.tif"));
    ASSERT_EQ(result.code, 0) << result.err;
    back = readPicture(path("out/eight.tif"));
    EXPECT_EQ(back.bits, 8);
    EXPECT_EQ(back.samples[3], std::round(30000 * 255.0 / 65535.0));

    // The listing shows every control with its value and range or entries.
    result = probe("--set Invert=1 --list-controls");
    ASSERT_EQ(result.code, 0) << result.err;
    for (const char* line :
         {"Gain = 100.0", "0 .. 200", "Fail Frame = 0", "Channels = All", "All | Red Only",
          "Invert = on", "Proxy = FULL", "FULL | 1/2", "Clear", "SparkPush21"})
        EXPECT_NE(result.out.find(line), std::string::npos) << line << "\n" << result.out;
    EXPECT_EQ(result.out.find("probe plug-in started"), std::string::npos);
}

TEST_F(Sparkrun, ControlErrorsSayWhatIsValid) {
    writeFlat8(path("in.png"), 100);
    const std::string files = " " + path("in.png") + " " + path("out/out.png");
    struct Case {
        std::string arguments;
        std::vector<std::string> mentions;
    } cases[] = {
        {"--set Radius=2",
         {"unknown control", "Gain", "Fail Frame", "Channels", "Invert", "Proxy"}},
        {"--set Gain=500", {"Gain", "0 .. 200"}},
        {"--set Gain=-1", {"0 .. 200"}},
        {"--set Gain=lots", {"takes a number"}},
        {"--set Channels=Blue", {"All, Red Only"}},
        {"--set Proxy=1/3", {"FULL, 1/2"}},
        {"--set Invert=maybe", {"on, off"}},
        {"--set Clear=1", {"push button"}},
        {"--key Gain@2=300", {"0 .. 200"}},
        {"--key Invert@2=1", {"only float fields take keys"}},
        {"--set Gain=50 --key Gain@2=40", {"both --set and --key"}},
        {"--depth 10", {"8 or 12"}},
        {"--frames 5-2", {"bad frame range"}},
    };
    for (const Case& c : cases) {
        const ToolRun result = probe(c.arguments + files);
        EXPECT_EQ(result.code, 2) << c.arguments;
        for (const std::string& mention : c.mentions)
            EXPECT_NE(result.err.find(mention), std::string::npos)
                << c.arguments << ": " << result.err;
        EXPECT_TRUE(outputs().empty()) << c.arguments;
    }
}

TEST_F(Sparkrun, AnimatedControlFollowsItsKeysOverASequence) {
    for (int frame = 1; frame <= 3; ++frame)
        writeFlat8(path("in.000" + std::to_string(frame) + ".png"), 200);
    // Keys 100 at frame 1 and 0 at frame 3: 50 at frame 2, in straight lines.
    ToolRun result = probe("--verbose --key Gain@1=100 --key Gain@3=0 " + path("in.####.png") +
                           " " + path("out/out.%04d.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    const float expected[] = {200, 100, 0};
    for (int frame = 1; frame <= 3; ++frame) {
        const Picture back = readPicture(path("out/out.000" + std::to_string(frame) + ".png"));
        ASSERT_EQ(back.samples.size(), 18u) << frame;
        EXPECT_EQ(back.samples[0], expected[frame - 1]) << frame;
    }
    EXPECT_NE(result.out.find("Gain=50.0"), std::string::npos) << result.out;

    // A still input with a sequence output is rendered at each frame number.
    result = probe("--key Gain@10=0 --key Gain@12=100 --frames 10-12 " + path("in.0001.png") + " " +
                   path("out/still.##.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(readPicture(path("out/still.10.png")).samples[0], 0);
    EXPECT_EQ(readPicture(path("out/still.11.png")).samples[0], 100);
    EXPECT_EQ(readPicture(path("out/still.12.png")).samples[0], 200);
}

TEST_F(Sparkrun, ASavedSetupLoadsBackWithNothingLost) {
    for (int frame = 1; frame <= 3; ++frame)
        writeFlat8(path("in.000" + std::to_string(frame) + ".png"), 120);
    const std::string setup = path("shot.setup");
    ToolRun result = probe(
        "--key Gain@1=100 --key Gain@3=50 --set 'Channels=Red Only' --set Invert=on "
        "--save-setup " +
        setup + " " + path("in.####.png") + " " + path("out/a.####.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result = probe("--setup " + setup + " " + path("in.####.png") + " " + path("out/b.####.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    for (int frame = 1; frame <= 3; ++frame) {
        const std::string number = "000" + std::to_string(frame);
        EXPECT_EQ(readPicture(path("out/a." + number + ".png")).samples,
                  readPicture(path("out/b." + number + ".png")).samples)
            << frame;
    }
    // Frame 2: Gain 75 of 120 is 90, inverted 165; green and blue 255.
    const Picture middle = readPicture(path("out/b.0002.png"));
    EXPECT_EQ(middle.samples[0], 165);
    EXPECT_EQ(middle.samples[1], 255);

    // --set wins over the set-up, and the set-up file is left as it was.
    const std::string saved = slurp(setup);
    result = probe("--setup " + setup + " --set Invert=off --set Gain=100 --frames 2 " +
                   path("in.####.png") + " " + path("out/c.####.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(readPicture(path("out/c.0002.png")).samples[0], 120);
    EXPECT_EQ(slurp(setup), saved);

    // A missing set-up is an input error.
    result = probe("--setup " + path("none.setup") + " " + path("in.0001.png") + " " +
                   path("out/d.png"));
    EXPECT_EQ(result.code, 3);
    EXPECT_NE(result.err.find("none.setup"), std::string::npos) << result.err;
}

TEST_F(Sparkrun, BadInputsFailWithTheirExitCodesAndLeaveNoOutput) {
    writeFlat8(path("good.png"), 50);
    { std::ofstream(path("garbage.png")) << "this is not a picture"; }
    { std::ofstream(path("garbage.xyz")) << "nor is this"; }
    { std::ofstream(path("empty.ppm"), std::ios::binary) << "P6\n0 0\n255\n"; }
    { std::ofstream(path("text.spark")) << "not a library"; }
    writePicture(path("huge.png"), 40000, 1, 3, OIIO::TypeDesc::UINT8,
                 std::vector<unsigned char>(40000 * 3, 7));
    const std::string out = " " + path("out/result.png");
    struct Case {
        std::string arguments;
        int code;
        std::string mention;
    } cases[] = {
        {path("missing.png") + out, 3, "not found"},
        {path("garbage.png") + out, 3, "garbage.png"},
        {path("garbage.xyz") + out, 3, "garbage.xyz"},
        {path("empty.ppm") + out, 3, "empty.ppm"},
        {path("huge.png") + out, 3, "32768"},
        {path("good.png") + " " + path("nofolder/result.png"), 4, "does not exist"},
        {path("good.png") + " " + path("out/result.nosuchformat"), 4, "unsupported output format"},
        {"--save-setup " + path("nofolder/a.setup") + " " + path("good.png") + out, 4, "nofolder"},
        {"--plugin " + path("text.spark") + " " + path("good.png") + out, 5, "text.spark"},
        {"--plugin " + path("nothing.spark") + " " + path("good.png") + out, 5, "nothing.spark"},
        {path("in.####.png") + " " + path("out/r.####.png"), 3,
         "no input files match " + path("in.####.png")},
        {path("g.%03d.png") + " " + path("out/r.####.png"), 3,
         "no input files match " + path("g.%03d.png")},
        {path("good.png") + " " + path("out/r.####.png") +
             " --frames 1-3 --set 'Fail Frame=2' --plugin " + kProbe,
         6, "frame 2"},
    };
    for (const Case& c : cases) {
        const ToolRun result = run(c.arguments);
        EXPECT_EQ(result.code, c.code) << c.arguments << "\n" << result.err;
        EXPECT_NE(result.err.find(c.mention), std::string::npos)
            << c.arguments << ": " << result.err;
        // Only the failing sequence got as far as its first frame.
        const std::vector<std::string> left = outputs();
        if (c.code == 6) {
            EXPECT_EQ(left, std::vector<std::string>{"r.0001.png"});
        } else {
            EXPECT_TRUE(left.empty()) << c.arguments;
        }
    }
}

// Needs the lens core: a chart distorted by known coefficients in Add mode and
// corrected with the same coefficients in Remove mode matches the chart in
// its interior.
TEST_F(Sparkrun, AKnownDistortionIsRemoved) {
    ASSERT_EQ(run("--make-chart " + path("chart.png")).code, 0);
    const std::string coefficients = " --set Radial1=0.12 --set Radial2=0.03 ";
    ToolRun result =
        run("--set Mode=Add" + coefficients + path("chart.png") + " " + path("distorted.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result = run("--set Mode=Remove" + coefficients + path("distorted.png") + " " +
                 path("corrected.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    double distorted = 0.0, corrected = 0.0;
    result = run("--compare --margin 15 " + path("chart.png") + " " + path("distorted.png"));
    ASSERT_EQ(std::sscanf(result.out.c_str(), "mean abs difference %lf", &distorted), 1)
        << result.out;
    result = run("--compare --margin 15 " + path("chart.png") + " " + path("corrected.png"));
    ASSERT_EQ(std::sscanf(result.out.c_str(), "mean abs difference %lf", &corrected), 1)
        << result.out;
    // Two resamplings of thin lines keep a little error; the distortion's is far larger.
    EXPECT_GT(distorted, 10.0);
    EXPECT_LT(corrected, 5.0);
    EXPECT_LT(corrected, distorted / 4);
}
