// sparkrun's automatic lines end to end, through the built tool and the real
// plug-in: --detect-lines, --lines auto with AutoFind, pooled frames.
#include "LinesFile.h"
#include "SparkrunFixture.h"
#include "linedetect/DistortedScenes.h"

namespace {

// A facade in straight lines (a frame, windows in rows and columns, oblique
// bars), drawn without distortion, 16-bit grey; `arc` adds a large curved
// object.
void writeFacade(const std::string& file, bool arc = false, unsigned seed = 1) {
    TestScene s;
    s.rectangle(20, 20, 940, 520, 0.6f);
    if (arc) {  // a ring: a bowl's rim, curved in the world
        s.disc(480, 2150, 1900, 0.85f);
        s.disc(480, 2150, 1880, 0.6f);
    }
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 2; ++j)
            s.rectangle(90 + 210 * i, 80 + 220 * j, 240 + 210 * i, 240 + 220 * j, 0.15f);
    // Oblique bars, as a floor's tiles or a roof's edges seen in perspective.
    for (int i = 0; i < 5; ++i) {
        const double x = 60 + 200 * i;
        s.polygon({{x, 505}, {x + 14, 505}, {x + 154, 290}, {x + 140, 290}}, 0.9f);
    }
    const FloatImageZel drawn = s.draw(0.7f, 0.004, seed);
    std::vector<uint16_t> samples;
    for (long i = 0; i < drawn.count(); ++i) {
        const uint16_t v =
            static_cast<uint16_t>(std::lround(std::clamp(drawn.data()[i], 0.0f, 1.0f) * 65535));
        samples.insert(samples.end(), {v, v, v});
    }
    writePicture(file, drawn.width(), drawn.height(), 3, OIIO::TypeDesc::UINT16, samples);
}

double fitted(const std::string& out, double* radial2) {
    double radial1 = 0;
    const size_t at = out.find("autofind: ");
    if (at == std::string::npos ||
        std::sscanf(out.c_str() + at, "autofind: Radial1=%lf Radial2=%lf", &radial1, radial2) != 2)
        return 99;
    return radial1;
}

}  // namespace

TEST_F(Sparkrun, DetectedLinesReadBackAndFlatFramesAreRefused) {
    writeFacade(path("facade.png"));
    ToolRun result = run("--set Mode=Add --set Radial1=-0.1 --set Radial2=0.02 " +
                         path("facade.png") + " " + path("distorted.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result = run("--detect-lines " + path("out/lines.json") + " " + path("distorted.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out.rfind("detected ", 0), 0u) << result.out;
    LinesFile lines;
    std::string error;
    ASSERT_TRUE(parseLinesText(slurp(path("out/lines.json")), lines, error)) << error;
    EXPECT_GE(lines.lines.size(), 14u);
    // The file is what --lines reads: drawn, fitted.
    result = run("--set Mode=Remove --lines " + path("out/lines.json") + " --autofind " +
                 path("distorted.png") + " " + path("out/fixed.png"));
    ASSERT_EQ(result.code, 0) << result.err;

    // Flat: exit 3, the reason, nothing written.
    writeFlat8(path("flat.png"), 120);
    result = run("--detect-lines " + path("out/flat.json") + " " + path("flat.png"));
    EXPECT_EQ(result.code, 3);
    EXPECT_NE(result.err.find("no usable straight line found in " + path("flat.png")),
              std::string::npos)
        << result.err;
    result = run("--lines auto --autofind " + path("flat.png") + " " + path("out/flat.png"));
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(outputs(), (std::vector<std::string>{"fixed.png", "lines.json"}));
}

TEST_F(Sparkrun, LinesAutoFitsTheLensThroughThePluginDespiteACurvedObject) {
    writeFacade(path("facade.png"), true);
    ToolRun result = run("--set Mode=Add --set Radial1=-0.1 --set Radial2=0.02 " +
                         path("facade.png") + " " + path("distorted.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    result =
        run("--verbose --set Mode=Remove --set \"Auto Preview=off\" --lines auto --autofind "
            "--overlay " +
            path("out/overlay.png") + " " + path("distorted.png") + " " + path("out/fixed.png"));
    ASSERT_EQ(result.code, 0) << result.err;
    double radial2 = 0;
    const double radial1 = fitted(result.out, &radial2);
    // Within half a pixel of the lens over the inner 0.7 of the frame (the
    // 2K target, 1 px, scaled to this frame).
    EXPECT_LT(modelDisplacement(960, 540, radial1, radial2, -0.1, 0.02), 0.5)
        << radial1 << " " << radial2;
    EXPECT_NE(result.out.find("lines: "), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("rejected: outlier"), std::string::npos) << result.out;
    EXPECT_EQ(readPicture(path("out/overlay.png")).width, 960);
}

TEST_F(Sparkrun, LinesAutoPoolsTheChosenFramesOfASequence) {
    // A locked-off plate: the same frame three times.
    writeFacade(path("plate.png"));
    ASSERT_EQ(
        run("--set Mode=Add --set Radial1=0.08 " + path("plate.png") + " " + path("in.1.png")).code,
        0);
    for (const char* copy : {"in.2.png", "in.3.png"}) fs::copy_file(path("in.1.png"), path(copy));
    const std::string names = path("in.#.png") + " " + path("out/o.#.png");
    ToolRun result = run("--verbose --set \"Auto Preview=off\" --lines auto --autofind " + names);
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("found in 3 frames of " + path("in.#.png") + " (1 to 3)"),
              std::string::npos)
        << result.out;
    result =
        run("--verbose --set \"Auto Preview=off\" --lines auto --detect-frames 2 --frames 1-3 " +
            names);
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find("found in " + path("in.2.png")), std::string::npos) << result.out;
    // A frame to search that is not there: exit 3 before any frame is written.
    fs::remove_all(dir_ / "out");
    fs::create_directory(dir_ / "out");
    result = run("--lines auto --detect-frames 2,7 " + names);
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_TRUE(outputs().empty());
}
