// OpenEXR plates whose data window is not their display window: the frame is
// the display window, cut from the data (overscan) or padded with black, and
// the output keeps the plate's display window.
#include "SparkrunFixture.h"

namespace {

const int kWidth = 40;
const int kHeight = 30;
// A pixel's red is (x + 10) / 256, its green (y + 10) / 256.
const int kOffset = 10;
const float kScale = 256.0f;

struct Window {
    int x, y, width, height;
};

// A float plate whose pixel at (x, y) of the file's coordinates is
// ((x + 10) / 256, (y + 10) / 256, 0.5), with the given display and data
// windows.
void writePlate(const std::string& file, const Window& display, const Window& data) {
    std::vector<float> samples;
    for (int y = data.y; y < data.y + data.height; ++y)
        for (int x = data.x; x < data.x + data.width; ++x)
            samples.insert(samples.end(), {(x + kOffset) / kScale, (y + kOffset) / kScale, 0.5f});
    auto out = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(out);
    OIIO::ImageSpec header(data.width, data.height, 3, OIIO::TypeDesc::FLOAT);
    header.x = data.x;
    header.y = data.y;
    header.full_x = display.x;
    header.full_y = display.y;
    header.full_width = display.width;
    header.full_height = display.height;
    ASSERT_TRUE(out->open(file, header));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    ASSERT_TRUE(out->close());
}

OIIO::ImageSpec headerOf(const std::string& file) {
    auto in = OIIO::ImageInput::open(file);
    return in ? in->spec() : OIIO::ImageSpec();
}

}  // namespace

TEST_F(Sparkrun, AnExrFrameIsItsDisplayWindow) {
    const Window display = {0, 0, kWidth, kHeight};
    const Window moved = {100, 50, kWidth, kHeight};
    struct Case {
        const char* name;
        Window display;
        Window data;
    } cases[] = {
        {"overscan", display, {-4, -3, kWidth + 8, kHeight + 6}},
        {"inside", display, {4, 3, kWidth - 8, kHeight - 6}},
        {"moved", moved, moved},
    };
    // One 12-bit step of the host frame, with room for the float rounding.
    const float step = 1.0f / 4095 + 1e-6f;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string plate = path(std::string(c.name) + ".exr");
        writePlate(plate, c.display, c.data);
        const std::string result = path(std::string("out/") + c.name + ".exr");
        const ToolRun run = probe(plate + " " + result);
        ASSERT_EQ(run.code, 0) << run.err;
        const OIIO::ImageSpec header = headerOf(result);
        EXPECT_EQ(header.full_x, c.display.x);
        EXPECT_EQ(header.full_y, c.display.y);
        EXPECT_EQ(header.full_width, kWidth);
        EXPECT_EQ(header.full_height, kHeight);
        EXPECT_EQ(header.x, c.display.x);
        EXPECT_EQ(header.y, c.display.y);
        const Picture picture = readPicture(result);
        ASSERT_EQ(picture.width, kWidth);
        ASSERT_EQ(picture.height, kHeight);
        for (int row = 0; row < kHeight; ++row) {
            for (int column = 0; column < kWidth; ++column) {
                const int x = c.display.x + column;
                const int y = c.display.y + row;
                const bool data = x >= c.data.x && x < c.data.x + c.data.width && y >= c.data.y &&
                                  y < c.data.y + c.data.height;
                const float* got =
                    &picture.samples[(static_cast<size_t>(row) * kWidth + column) * 3];
                const float want[] = {data ? (x + kOffset) / kScale : 0.0f,
                                      data ? (y + kOffset) / kScale : 0.0f, data ? 0.5f : 0.0f};
                for (int channel = 0; channel < 3; ++channel)
                    ASSERT_NEAR(got[channel], want[channel], step)
                        << "x " << x << " y " << y << " channel " << channel;
            }
        }
    }
}

// The lens centre is the display window's: a plate with overscan is
// corrected exactly as the same plate without it.
TEST_F(Sparkrun, AnOverscanPlateIsCorrectedAsThePlateWithoutIt) {
    writePlate(path("overscan.exr"), {0, 0, kWidth, kHeight}, {-6, -5, kWidth + 12, kHeight + 10});
    writePlate(path("plain.exr"), {0, 0, kWidth, kHeight}, {0, 0, kWidth, kHeight});
    for (const char* name : {"overscan", "plain"}) {
        const ToolRun result =
            run(std::string("--set Radial1=-0.2 --set Radial2=0.1 ") +
                path(std::string(name) + ".exr") + " " + path(std::string("out/") + name + ".exr"));
        ASSERT_EQ(result.code, 0) << result.err;
    }
    const Picture overscan = readPicture(path("out/overscan.exr"));
    const Picture plain = readPicture(path("out/plain.exr"));
    ASSERT_EQ(overscan.width, kWidth);
    EXPECT_EQ(overscan.samples, plain.samples);
}
