// The frame loop's two sides on their own threads: frames read ahead come
// to the loop in order, each as its host frame, until the first that fails;
// frames written behind are committed in order, and a failure keeps the
// frames before it whole and leaves none after it. (The tool's own tests
// run the whole loop; these run under ThreadSanitizer too.)
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "FrameInputs.h"
#include "FrameOutputs.h"

namespace fs = std::filesystem;

namespace {
const int kWidth = 40;
const int kHeight = 24;

// Frame f of a sequence: every sample 1000 * f (16-bit PNG).
void writeFrame(const std::string& file, unsigned f) {
    auto out = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(out);
    const std::vector<uint16_t> samples(kWidth * kHeight * 3, static_cast<uint16_t>(1000 * f));
    ASSERT_TRUE(out->open(file, OIIO::ImageSpec(kWidth, kHeight, 3, OIIO::TypeDesc::UINT16)));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT16, samples.data()));
    ASSERT_TRUE(out->close());
}

size_t frameWords(int depth) {
    return (hostFrameBytes(kWidth, kHeight, depth) + sizeof(unsigned long) - 1) /
           sizeof(unsigned long);
}

class FramePipeline : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/frame-pipeline-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        fs::create_directory(dir_ / "out");
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    // A plan of frames 1..count from in.#.png to out/o.#.png.
    FramePlan plan(unsigned count) const {
        FramePlan plan;
        std::string error;
        EXPECT_TRUE(FramePattern::parse(path("in.#.png"), &plan.input, &error));
        EXPECT_TRUE(FramePattern::parse(path("out/o.#.png"), &plan.output, &error));
        for (unsigned f = 1; f <= count; ++f) plan.frames.push_back(f);
        return plan;
    }

    std::vector<std::string> outputs() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_ / "out"))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path dir_;
};
}  // namespace

TEST_F(FramePipeline, FramesReadAheadComeInOrderUntilTheFirstThatFails) {
    for (unsigned f = 1; f <= 10; ++f) writeFrame(path("in." + std::to_string(f) + ".png"), f);
    // Frame 5 is cut off; frame 7 is of another size: neither may become a frame.
    const std::string five = path("in.5.png");
    fs::resize_file(five, fs::file_size(five) / 2);
    const FramePlan frames = plan(10);
    FilePixels first;
    int depth = 0;
    ASSERT_TRUE(readImage(frames.input.fileFor(1), kHostDepth12, &first, &depth).ok());
    FrameSource source;
    source.plan = &frames;
    source.first = &first;
    source.next.requestedDepth = kHostDepth12;
    source.next.expectWidth = kWidth;
    source.next.expectHeight = kHeight;
    source.depth = kHostDepth12;
    HostFrame frame(frameWords(kHostDepth12));
    FrameInputs inputs(source, frame.size(), 2, 2);
    for (size_t i = 0; i < 4; ++i) {
        TakenFrame taken;
        ASSERT_TRUE(inputs.take(i, &frame, &taken).ok()) << i;
        // 1000 * f in 12 bits, above the 4 low bits, in every sample.
        const uint16_t expected =
            static_cast<uint16_t>(twelveFromSixteen(1000 * static_cast<int>(i + 1)) << 4);
        const auto* words = reinterpret_cast<const uint16_t*>(frame.data());
        for (size_t k = 0; k < static_cast<size_t>(kWidth) * kHeight * 3; ++k)
            ASSERT_EQ(words[k], expected) << "frame " << i + 1 << " sample " << k;
    }
    TakenFrame taken;
    const RunStatus failed = inputs.take(4, &frame, &taken);
    EXPECT_EQ(failed.code, ExitCode::Input);
    EXPECT_NE(failed.message.find(five), std::string::npos) << failed.message;
}

TEST_F(FramePipeline, ASequenceMixingFloatAndWholeNumberFramesIsRefusedAtTheFirstMisfit) {
    EXPECT_TRUE(checkFrameKind(FloatEncoding::Linear, false, false, "a.png").ok());
    EXPECT_TRUE(checkFrameKind(FloatEncoding::Log, true, true, "a.exr").ok());
    const RunStatus log = checkFrameKind(FloatEncoding::Log, true, false, "in.3.tif");
    EXPECT_EQ(log.code, ExitCode::Usage);
    EXPECT_NE(log.message.find("--float-encoding log"), std::string::npos);
    EXPECT_NE(log.message.find("in.3.tif"), std::string::npos);
    for (bool firstIsFloat : {false, true}) {
        const RunStatus mixed =
            checkFrameKind(FloatEncoding::Linear, firstIsFloat, !firstIsFloat, "in.4.tif");
        EXPECT_EQ(mixed.code, ExitCode::Usage);
        EXPECT_NE(mixed.message.find("in.4.tif"), std::string::npos) << mixed.message;
    }
}

TEST_F(FramePipeline, FramesWrittenBehindAreCommittedInOrderAndAFailureStopsAtItsFrame) {
    const FramePlan frames = plan(12);
    std::mutex seen;
    std::vector<unsigned> written;
    OutputSettings settings;
    settings.width = kWidth;
    settings.height = kHeight;
    settings.depth = kHostDepth8;
    settings.type = SampleType::Eight;
    settings.total = frames.frames.size();
    settings.progress = 0;
    settings.written = [&](const FrameWritten& done) {
        std::lock_guard<std::mutex> hold(seen);
        written.push_back(done.frame);
        EXPECT_EQ(done.done, written.size());
    };
    {
        HostFrame frame(frameWords(kHostDepth8));
        FrameOutputs outputs(settings, frame.size(), 2);
        for (size_t i = 0; i < 12; ++i) {
            const unsigned f = frames.frames[i];
            std::fill(reinterpret_cast<unsigned char*>(frame.data()),
                      reinterpret_cast<unsigned char*>(frame.data()) + kWidth * kHeight * 3,
                      static_cast<unsigned char>(10 * f));
            // Frame 6 goes to a folder that does not exist.
            const std::string name = f == 6 ? path("missing/o.6.png") : frames.output.fileFor(f);
            outputs.submit(i, f, name, "", FrameOrigin(), "", &frame);
        }
        const RunStatus status = outputs.finish();
        EXPECT_EQ(status.code, ExitCode::Output);
        EXPECT_NE(status.message.find("missing/o.6.png"), std::string::npos) << status.message;
    }
    EXPECT_EQ(written, (std::vector<unsigned>{1, 2, 3, 4, 5}));
    EXPECT_EQ(outputs(),
              (std::vector<std::string>{"o.1.png", "o.2.png", "o.3.png", "o.4.png", "o.5.png"}));
    for (unsigned f = 1; f <= 5; ++f) {
        auto in = OIIO::ImageInput::open(frames.output.fileFor(f));
        ASSERT_TRUE(in);
        std::vector<unsigned char> samples(kWidth * kHeight * 3);
        ASSERT_TRUE(in->read_image(0, 0, 0, 3, OIIO::TypeDesc::UINT8, samples.data()));
        EXPECT_EQ(samples, std::vector<unsigned char>(samples.size(), 10 * f)) << f;
    }
}
