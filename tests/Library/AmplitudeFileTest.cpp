// The amplitude file reader on its own: what it delivers and what it refuses.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "AmplitudeFile.h"

namespace {

struct Read {
    ZelAmplitudeRead status;
    std::vector<ZelAmplitudeKey> keys;
};

Read readText(const std::string& text) {
    std::FILE* file = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), file);
    std::rewind(file);
    Read read;
    read.status = zelReadAmplitudeFile(
        file,
        [](void* context, const ZelAmplitudeKey& key) {
            static_cast<std::vector<ZelAmplitudeKey>*>(context)->push_back(key);
        },
        &read.keys);
    std::fclose(file);
    return read;
}

}  // namespace

TEST(AmplitudeFile, DeliversEveryFieldOfCompleteBlocksOnly) {
    // Blanks in the patterns match any run of white space, newlines included.
    const Read read = readText(
        "Channel Amplitude 3:  Size 2\n\tKey 7\n\t\tFrame 70\n\t\tValue -1.5\n\t\tEnd\n"
        "Key 8 Frame 80 Value 2.5e2 End\n\tKey 9\n");
    EXPECT_EQ(read.status, ZelAmplitudeRead::kRead);
    ASSERT_EQ(read.keys.size(), 2u);
    EXPECT_EQ(read.keys[0].key, 7);
    EXPECT_EQ(read.keys[0].frame, 70);
    EXPECT_EQ(read.keys[0].value, -1.5f);
    EXPECT_EQ(read.keys[1].value, 250.0f);

    const Read headerless = readText("Key 1 Frame 1 Value 1 End\n");
    EXPECT_EQ(headerless.status, ZelAmplitudeRead::kNoHeader);
    EXPECT_TRUE(headerless.keys.empty());
}
