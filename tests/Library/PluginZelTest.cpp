// The plug-in base class through a fake host service: band split of
// MultiProcess and lib_mp_exec, random frame access, motion values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "FakeHost.h"
#include "ImageZel.h"
#include "PluginZel.h"
#include "ZelHost.h"

namespace {

using Rows = std::pair<long, long>;

class RecordingPlugin : public PluginZel {
  public:
    void mp_record(long first, long last) {
        std::lock_guard<std::mutex> lock(mutex);
        bands.emplace_back(first, last);
    }
    std::vector<Rows> sortedBands() {
        std::sort(bands.begin(), bands.end());
        return bands;
    }
    std::mutex mutex;
    std::vector<Rows> bands;
};

struct RowCounts {
    std::mutex mutex;
    std::vector<int> hits;
};

void countRows(void* data, int first, int last) {
    RowCounts* counts = static_cast<RowCounts*>(data);
    std::lock_guard<std::mutex> lock(counts->mutex);
    for (int row = first; row <= last; ++row) ++counts->hits[row];
}

class PluginZelHost : public testing::Test {
  protected:
    void SetUp() override {
        setenv("STRAIGHTLUX_SLEEP_SCALE", "0", 1);
        host().reset();
        host().processors = 4;
        zelHost().frame.processors = 4;
        zelHost().frame.proxyFactor = 1;
    }
    static fakehost::Host& host() { return fakehost::Host::instance(); }
};

}  // namespace

TEST_F(PluginZelHost, MultiProcessSplitsRowsIntoBands) {
    RecordingPlugin plugin;
    const auto worker = static_cast<PluginZel::RowWorker>(&RecordingPlugin::mp_record);

    plugin.MultiProcess(worker, 10);
    EXPECT_EQ(plugin.sortedBands(), (std::vector<Rows>{{0, 1}, {2, 3}, {4, 5}, {6, 9}}));

    // Fewer rows than bands: all rows go to the last band.
    plugin.bands.clear();
    plugin.MultiProcess(worker, 3);
    EXPECT_EQ(plugin.sortedBands(), (std::vector<Rows>{{0, -1}, {0, -1}, {0, -1}, {0, 2}}));
    EXPECT_EQ(host().count("sparkMpFork"), 2);

    RowCounts counts;
    counts.hits.assign(11, 0);
    lib_mp_exec(&plugin, countRows, 11, &counts);
    EXPECT_EQ(counts.hits, std::vector<int>(11, 1));
    EXPECT_EQ(plugin.libraryData, &counts);
    EXPECT_EQ(lib_abort_render(&plugin), 0);
    EXPECT_EQ(plugin.AbortRender(), 0);
}

TEST_F(PluginZelHost, GetValueWithoutTemporaryBuffersOnlyReports) {
    SourceZel clip;
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    ImageZel* held = &image;
    testing::internal::CaptureStderr();
    clip.GetValue(4.0, held);
    const std::string text =
        "Random Frame Access requested via GetValue(), but no temp buf allocated. "
        "(DLRandom in .plugin?)\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "SPARK_MESSAGE::\t" + text + "\n");
    EXPECT_TRUE(host().called("sparkMessage(" + text + ")"));
    EXPECT_EQ(held, &image);
    EXPECT_EQ(host().count("sparkGetFrame"), 0);
}

TEST_F(PluginZelHost, GetValueFetchesTheNearestFrame) {
    // Host frames 3 x 2, 8-bit: every byte holds the frame number.
    zelHost().frame.width = 3;
    zelHost().frame.height = 2;
    std::vector<unsigned long> storage(8, 0);  // room for the 12-bit read too
    ZelFrameBuffer temp;
    temp.Buffer = storage.data();
    host().frameSource = [](int, int frame, unsigned long* destination) {
        std::memset(destination, frame, 3 * 2 * 3);
    };

    SourceZel clip;
    clip.tempBufferCount = 1;
    clip.tempBuffers = &temp;
    clip.clipIndex = 0;
    ImageZel image(3, 2, 1.0f, nullptr, nullptr);
    image.pixelAspect = 2.0;
    ImageZel* held = &image;

    clip.GetValue(2.5, held);
    EXPECT_TRUE(host().called("sparkGetFrame(0,3)"));
    EXPECT_EQ(held, &image);
    EXPECT_EQ(image.rows[1][2].green, 3 * 128 + 1);
    EXPECT_DOUBLE_EQ(image.pixelAspect, 2.0);

    clip.GetValue(2.4, held);
    EXPECT_TRUE(host().called("sparkGetFrame(0,2)"));
    EXPECT_EQ(image.rows[0][0].red, 2 * 128 + 1);

    // The 12-bit flag reads the buffer as words: 0x0202 holds the 12-bit value 32.
    clip.deep12 = 1;
    clip.GetValue(2.0, held);
    EXPECT_EQ(image.rows[0][0].red, 32 * 8);
}

TEST_F(PluginZelHost, TrackDataDecodesMotionFromTwiceTheFrame) {
    // A 2 x 1 clip frame: pixel 0 red 3, green 0, blue 0; pixel 1 red 0, green 255, blue 1.
    zelHost().frame.width = 2;
    zelHost().frame.height = 1;
    std::vector<unsigned long> storage(1, 0);
    ZelFrameBuffer temp;
    temp.Buffer = storage.data();
    int requested = -1;
    host().frameSource = [&requested](int, int frame, unsigned long* destination) {
        requested = frame;
        const unsigned char bytes[6] = {3, 0, 0, 0, 255, 1};
        std::memcpy(destination, bytes, sizeof bytes);
    };
    ImageZel clipImage(2, 1, 1.0f, nullptr, nullptr);
    SourceZel clip;
    clip.tempBufferCount = 1;
    clip.tempBuffers = &temp;
    clip.image = &clipImage;

    PluginZel plugin;
    float* values = plugin.GetTrackData(&clip, 1.5);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(requested, 3);
    // Alpha 32767 sets every bit above the first in v; green 32767 does the same in u.
    EXPECT_FLOAT_EQ(values[0], 3.0f / 256.0f);
    EXPECT_FLOAT_EQ(values[1], -2.0f / 256.0f);
    EXPECT_FLOAT_EQ(values[2], -2.0f / 256.0f);
    EXPECT_FLOAT_EQ(values[3], -1.0f / 256.0f);
    EXPECT_EQ(plugin.trackImage, nullptr);
    delete[] values;
}

TEST(PluginZel, ConstructorInitialValues) {
    PluginZel plugin;
    EXPECT_EQ(plugin.frame, 0.0);
    EXPECT_EQ(plugin.stateFlag, 1);
    EXPECT_EQ(plugin.frameStateFlag, 1);
    EXPECT_EQ(plugin.settings[0], 15u);
    EXPECT_EQ(plugin.settings[10], 0u);
    EXPECT_EQ(plugin.reservedRate, 25.0);
    EXPECT_EQ(plugin.frameStateWord, 0);
    EXPECT_EQ(plugin.libraryFunction, nullptr);
    EXPECT_EQ(plugin.input.tempBufferCount, 0);
    EXPECT_EQ(plugin.input.activeWord, 1);
    EXPECT_EQ(plugin.input.image, nullptr);
    EXPECT_EQ(plugin.output.image, nullptr);
}
