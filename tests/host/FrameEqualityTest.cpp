// The same frames through the real plug-in at 1, 2, 3 and 7 host processors,
// and with the plain and the AVX2 forms of the pixel loops: every output byte
// must be the same. The matrix covers 8- and 12-bit frames, every sampling
// mode, Remove, Add and Auto Remove, curvatures, squeeze and an off-centre
// centre, magnify up and down, blend and proxy factors; frame sizes are odd
// so that bands and vectors leave remainders, and a sequence of sizes makes
// the driver replace and reuse its kept pictures.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "LoadedPlugin.h"

namespace {

// One set of control values; records not named keep their defaults.
struct Setting {
    const char* name;
    float radial1, radial2, xCurvature, yCurvature;
    float centreX, centreY;  // percent
    float squeeze, magnify, blend;
    int mode;   // menu index: 0 Remove, 1 Add, 2 Auto Remove
    int proxy;  // menu index of the proxy selector
};

const Setting kSettings[] = {
    {"remove", -0.08f, 0.02f, 0, 0, 50, 50, 1, 1, 0, 0, 0},
    {"add", 0.12f, 0.03f, 0, 0, 50, 50, 1, 1, 0, 1, 0},
    {"auto remove", 0.1f, 0, 0, 0, 50, 50, 1, 1, 0, 2, 0},
    {"curvatures", 0.07f, 0, 0.3f, -0.2f, 41.5f, 58, 1.7f, 1, 0, 0, 0},
    {"magnify up", -0.1f, 0, 0, 0, 50, 50, 1, 1.3f, 0, 0, 0},
    {"magnify down, blend", 0.1f, 0, 0, 0, 50, 50, 1, 0.8f, 30, 1, 0},
    {"proxy 1/2, blend", 0.06f, 0, 0, 0, 50, 50, 1, 1, 55, 1, 1},
    {"proxy 1/3", 0.06f, 0, 0, 0, 50, 50, 1, 1.2f, 0, 0, 2},
    {"fold-over", -1.0f, -1.0f, 0.6f, 0, 20, 80, 0.7f, 1, 0, 0, 0},
};

constexpr int kSamplingModes = 5;
const int kProcessorCounts[] = {1, 2, 3, 7};
struct Size {
    int width, height;
};
const Size kSizes[] = {{97, 61}, {70, 23}, {97, 61}};

void fillInput(simhost::FrameBuffer& buffer) {
    const size_t samples = static_cast<size_t>(buffer.width) * buffer.height * 3;
    for (size_t i = 0; i < samples; ++i) {
        const uint32_t h = static_cast<uint32_t>(i) * 2654435761u;
        if (buffer.depth == 24)
            buffer.bytes()[i] = static_cast<unsigned char>(h >> 24);
        else
            buffer.words()[i] = static_cast<unsigned short>(h >> 16);
    }
}

class FrameEquality : public LoadedPlugin {
  protected:
    void TearDown() override { unsetenv("STRAIGHTLUX_PLAIN_CPU"); }

    static void apply(simhost::Plugin& p, const Setting& s, int sampling) {
        auto f = [&p](const char* name) { return p.record<SparkFloatStruct>(name); };
        auto menu = [&p](const char* name) { return p.record<SparkPupStruct>(name); };
        f("SparkFloat6")->Value = s.radial1;
        f("SparkFloat7")->Value = s.radial2;
        f("SparkFloat8")->Value = s.xCurvature;
        f("SparkFloat9")->Value = s.yCurvature;
        f("SparkFloat13")->Value = s.centreX;
        f("SparkFloat14")->Value = s.centreY;
        f("SparkFloat16")->Value = s.squeeze;
        f("SparkFloat18")->Value = s.magnify;
        f("SparkFloat27")->Value = s.blend;
        menu("SparkPup17")->Value = sampling;
        menu("SparkPup23")->Value = s.mode;
        menu("SparkPup33")->Value = s.proxy;
    }

    // Every frame of the matrix at one processor count, one after another
    // as a session would render them, each frame's output bytes in order.
    std::vector<std::vector<unsigned long>> renderAll(simhost::Plugin& p, int processors) {
        std::vector<std::vector<unsigned long>> frames;
        host().processors = processors;
        for (int depth : {24, 48}) {
            bool started = false;
            for (const Size size : kSizes) {
                const SparkInfoStruct info = host().makeInfo(size.width, size.height, depth);
                if (!started) {
                    testing::internal::CaptureStdout();
                    p.initialise(info);
                    testing::internal::GetCapturedStdout();
                    started = true;
                }
                for (const Setting& s : kSettings) {
                    for (int sampling = 0; sampling < kSamplingModes; ++sampling) {
                        fillInput(host().setBuffer(2, size.width, size.height, depth));
                        simhost::FrameBuffer& output =
                            host().setBuffer(1, size.width, size.height, depth);
                        apply(p, s, sampling);
                        host().clearCalls();
                        EXPECT_EQ(p.process(info), output.storage.data())
                            << s.name << " sampling " << sampling << " depth " << depth;
                        frames.push_back(output.storage);
                    }
                }
            }
        }
        return frames;
    }

    // Names the first frame that differs, in matrix order.
    static std::string describe(size_t frame) {
        const size_t perSize = std::size(kSettings) * kSamplingModes;
        const size_t perDepth = perSize * std::size(kSizes);
        const size_t depth = frame / perDepth, size = frame % perDepth / perSize;
        const size_t setting = frame % perSize / kSamplingModes;
        return std::string(kSettings[setting].name) + ", sampling " +
               std::to_string(frame % kSamplingModes) + ", size " +
               std::to_string(kSizes[size].width) + "x" + std::to_string(kSizes[size].height) +
               ", depth " + (depth == 0 ? "8" : "12");
    }

    static void expectSame(const std::vector<std::vector<unsigned long>>& want,
                           const std::vector<std::vector<unsigned long>>& got,
                           const std::string& what) {
        ASSERT_EQ(got.size(), want.size()) << what;
        for (size_t i = 0; i < want.size(); ++i)
            ASSERT_TRUE(got[i] == want[i]) << what << ": " << describe(i);
    }
};

}  // namespace

TEST_F(FrameEquality, EveryProcessorCountGivesTheSameBytes) {
    const auto one = renderAll(plugin, 1);
    for (int processors : kProcessorCounts) {
        if (processors == 1) continue;
        expectSame(one, renderAll(plugin, processors), std::to_string(processors) + " processors");
    }
}

TEST_F(FrameEquality, PlainFormsGiveTheSameBytesAsTheVectorForms) {
    const auto vector = renderAll(plugin, 3);
    // A second copy of the plug-in that chooses its forms with the variable set.
    setenv("STRAIGHTLUX_PLAIN_CPU", "1", 1);
    simhost::Plugin plain;
    std::string error;
    // As in LoadedPlugin: what the plug-in allocates at load is not all given back.
#if defined(__SANITIZE_ADDRESS__)
    __lsan_disable();
#endif
    const bool loaded = plain.load(STRAIGHTLUX_PLUGIN, &error, /*fresh=*/true);
#if defined(__SANITIZE_ADDRESS__)
    __lsan_enable();
#endif
    ASSERT_TRUE(loaded) << error;
    expectSame(vector, renderAll(plain, 3), "plain forms");
    expectSame(vector, renderAll(plain, 1), "plain forms on one processor");
}
