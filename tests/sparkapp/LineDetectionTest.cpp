// The detector's one call on the programs' pictures: the same lines at any
// processor count, lines that read back as a lines file, frames pooled.
#include <gtest/gtest.h>

#include "LineDetection.h"
#include "linedetect/DistortedScenes.h"

namespace {

// A picture as a program holds it: 16-bit RGB, from a drawn scene.
FilePixels pictureOf(const FloatImageZel& drawn) {
    FilePixels picture;
    picture.width = drawn.width();
    picture.height = drawn.height();
    picture.bitsPerSample = 16;
    for (long i = 0; i < drawn.count(); ++i) {
        const float v = std::clamp(drawn.data()[i], 0.0f, 1.0f);
        const uint16_t word = static_cast<uint16_t>(std::lround(v * 65535.0f));
        picture.words.insert(picture.words.end(), {word, word, word});
    }
    return picture;
}

TestScene windows(double k1, double k2) {
    TestScene s;
    s.samples = 2;  // positions are compared between runs, not with the truth
    s.k1 = k1;
    s.k2 = k2;
    s.rectangle(30, 25, 930, 515, 0.6f);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 2; ++j)
            s.rectangle(90 + 210 * i, 80 + 220 * j, 240 + 210 * i, 240 + 220 * j, 0.15f);
    return s;
}

}  // namespace

TEST(LineDetection, SameLinesAtAnyProcessorCountAndTheyReadBack) {
    const FilePixels picture = pictureOf(windows(0.1, 0.02).draw(0.8f, 0.01, 9));
    LinesFound one;
    ASSERT_TRUE(detectPictureLines(picture, "windows.png", &one, 1).ok());
    // 16 straight lines: the frame's four, and the windows' edges joined along rows and columns.
    ASSERT_GE(one.lines.lines.size(), 14u);
    for (int processors : {2, 3, 7}) {
        LinesFound more;
        ASSERT_TRUE(detectPictureLines(picture, "windows.png", &more, processors).ok());
        ASSERT_EQ(more.lines.lines.size(), one.lines.lines.size()) << processors;
        EXPECT_EQ(formatLinesText(more.lines), formatLinesText(one.lines)) << processors;
    }
    // Written as a lines file, they read back whole and lie on the frame.
    LinesFile back;
    std::string error;
    ASSERT_TRUE(parseLinesText(formatLinesText(one.lines), back, error)) << error;
    ASSERT_EQ(back.lines.size(), one.lines.lines.size());
    EXPECT_TRUE(checkLinesInFrame(back, picture.width, picture.height, error)) << error;
    for (size_t l = 0; l < back.lines.size(); ++l) {
        ASSERT_EQ(back.lines[l].size(), one.lines.lines[l].size());
        EXPECT_GE(back.lines[l].size(), 3u);  // the fit measures lines of three points or more
        for (size_t p = 0; p < back.lines[l].size(); ++p)
            EXPECT_NEAR(back.lines[l][p].x, one.lines.lines[l][p].x, 5e-4);
    }
}

TEST(LineDetection, FramesPooledAndRefused) {
    // Two frames of a plate: the lines of both, one model.
    const FilePixels first = pictureOf(windows(-0.08, 0.0).draw(0.8f, 0.01, 1));
    const FilePixels second = pictureOf(windows(-0.08, 0.0).draw(0.8f, 0.01, 2));
    LineDetectionPool pool(2);
    ASSERT_TRUE(pool.add(first, "a.0001.png").ok());
    ASSERT_TRUE(pool.add(second, "a.0002.png").ok());
    LinesFound pooled, single;
    ASSERT_TRUE(pool.select("2 frames", &pooled).ok());
    ASSERT_TRUE(detectPictureLines(first, "a.0001.png", &single).ok());
    EXPECT_GE(pooled.lines.lines.size(), 2 * single.lines.lines.size() - 2);
    EXPECT_LT(
        modelDisplacement(960, 540, pooled.detection.radial1, pooled.detection.radial2, -0.08, 0.0),
        0.3);
    // Frames of another size are refused (exit 3), naming both.
    FilePixels small = first;
    small.width = 480;
    small.height = 1080;
    const RunStatus other = pool.add(small, "b.png");
    EXPECT_EQ(other.code, ExitCode::Input);
    EXPECT_NE(other.message.find("480x1080"), std::string::npos) << other.message;
    EXPECT_NE(other.message.find("a.0001.png"), std::string::npos) << other.message;
    // A flat picture: exit 3 with the reason.
    TestScene flat;
    flat.samples = 1;
    LinesFound none;
    const RunStatus refused =
        detectPictureLines(pictureOf(flat.draw(0.0f, 0.01)), "grey.png", &none);
    EXPECT_EQ(refused.code, ExitCode::Input);
    EXPECT_EQ(refused.message.rfind("no usable straight line found in grey.png", 0), 0u)
        << refused.message;
    EXPECT_TRUE(none.lines.lines.empty());
}

TEST(LineDetection, AnImageZelGivesTheLinesOfTheSamePicture) {
    const FloatImageZel drawn = windows(0.12, 0.03).draw(0.8f, 0.005, 4);
    // The same values at 15 bits in an ImageZel (first row on top).
    ImageZel image(drawn.width(), drawn.height(), 1.0f, nullptr, nullptr);
    ASSERT_TRUE(image.hasPixels());
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x) {
            const auto v = static_cast<unsigned short>(
                std::lround(std::clamp(drawn.at(x, y), 0.0f, 1.0f) * 32767.0f));
            image.rows[y][x] = PixelZel{v, v, v, 32767};
        }
    LinesFound fromImage, fromFile;
    ASSERT_TRUE(detectPictureLines(image, "image", &fromImage, 2).ok());
    ASSERT_TRUE(detectPictureLines(pictureOf(drawn), "file", &fromFile, 2).ok());
    EXPECT_EQ(fromImage.lines.lines.size(), fromFile.lines.lines.size());
    // 15 and 16 bits round the values a little differently; the model agrees.
    EXPECT_LT(modelDisplacement(960, 540, fromImage.detection.radial1, fromImage.detection.radial2,
                                0.12, 0.03),
              0.3);
}
