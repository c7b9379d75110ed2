// The amplitude file reader on its own: what it delivers and what it refuses.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "AmplitudeFile.h"

namespace {

ZelAmplitudeResult readText(const std::string& text) {
    std::FILE* file = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), file);
    std::rewind(file);
    ZelAmplitudeResult read = zelReadAmplitudeFile(file);
    std::fclose(file);
    return read;
}

std::string block(const std::string& key, const std::string& value) {
    return "\tKey " + key + "\n\t\tFrame 1\n\t\tValue " + value + "\n\t\tEnd\n";
}

}  // namespace

TEST(AmplitudeFile, DeliversEveryFieldOfCompleteBlocksOnly) {
    // Blanks in the patterns match any run of white space, newlines included.
    const ZelAmplitudeResult read = readText(
        "Channel Amplitude 3:  Size 2\n\tKey 7\n\t\tFrame 70\n\t\tValue -1.5\n\t\tEnd\n"
        "Key 8 Frame 80 Value 2.5e2 End\n\tKey 9\n");
    EXPECT_EQ(read.status, ZelAmplitudeRead::kRead);
    ASSERT_EQ(read.keys.size(), 2u);
    EXPECT_EQ(read.keys[0].key, 7);
    EXPECT_EQ(read.keys[0].frame, 70);
    EXPECT_EQ(read.keys[0].value, -1.5f);
    EXPECT_EQ(read.keys[1].value, 250.0f);

    const ZelAmplitudeResult headerless = readText("Key 1 Frame 1 Value 1 End\n");
    EXPECT_EQ(headerless.status, ZelAmplitudeRead::kNoHeader);
    EXPECT_TRUE(headerless.keys.empty());
}

// Numbers that would wrap or poison a curve refuse the file and name the block.
TEST(AmplitudeFile, KeysBeyond32BitsAndNonFiniteValuesAreRefused) {
    const std::string header = "Channel Amplitude 1:\n\tSize -1\n";
    EXPECT_EQ(readText(header + block("2147483647", "1") + block("-2147483648", "1")).keys.size(),
              2u);
    for (const std::string key : {"2147483648", "-2147483649", "99999999999999999999999"}) {
        const ZelAmplitudeResult read = readText(header + block("1", "1") + block(key, "1"));
        EXPECT_EQ(read.status, ZelAmplitudeRead::kKeyOutOfRange) << key;
        EXPECT_EQ(read.block, 2) << key;
    }
    for (const std::string value : {"nan", "inf", "-inf", "1e39"}) {
        const ZelAmplitudeResult read = readText(header + block("1", value));
        EXPECT_EQ(read.status, ZelAmplitudeRead::kValueNotFinite) << value;
        EXPECT_EQ(read.block, 1) << value;
    }
}
