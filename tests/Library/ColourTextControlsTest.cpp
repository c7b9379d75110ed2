// Colour packing between 15-bit channels and the host's byte word and
// percentage fields; text and file name fields.
#include <gtest/gtest.h>

#include <cstring>

#include "ColourControlZel.h"
#include "ControlTestRecords.h"
#include "FileControlZel.h"
#include "TextControlZel.h"

using fakehost::Host;

namespace {
using Strings = std::vector<std::string>;
}

TEST(ColourControls, SwatchWordAndReadBackAsymmetry) {
    resetHost();
    ColorRecord swatch{};
    ColourControlZel colour;
    colour.bind(50, &swatch.Color);
    EXPECT_FALSE(colour.hasChannelFields());

    colour.SetValue(-1.0, 32767, 0, 0, 0);
    EXPECT_EQ(swatch.Color & 0xFF, 255u);
    EXPECT_EQ((swatch.Color >> 24) & 0xFF, 255u);  // alpha argument 0 never arrives
    EXPECT_EQ(swatch.Color, 0xFF0000FFul);
    EXPECT_EQ(colour.red, 32767);
    EXPECT_EQ(colour.alpha, 32767);
    unsigned short r = 0, g = 1, b = 1, a = 0;
    colour.GetValue(5.0, r, g, b, a);
    EXPECT_EQ(r, 255 * 128);
    EXPECT_EQ(a, 32767);
    EXPECT_TRUE(hostCalls().empty());  // without channel fields nothing is updated

    // Byte 0x81 = 129: Sync gives 129 * 128 + 64, GetValue 129 * 128.
    swatch.Color = 0x00812A81ul;
    colour.Sync();
    EXPECT_EQ(colour.red, 16576);
    EXPECT_EQ(colour.green, 42 * 128 + 21);
    colour.GetValue(-1.0, r, g, b, a);
    EXPECT_EQ(r, 16512);
    EXPECT_EQ(g, 42 * 128);

    colour.Hide(true);
    colour.Disable(true);
    EXPECT_TRUE(colour.isDisabled());
    EXPECT_EQ(hostCalls(), (Strings{"sparkDisableParameter(1,50)"}));
}

TEST(ColourControls, ChannelFieldsHoldPercentagesAndUpdateInOrder) {
    resetHost();
    ColorRecord swatch{};
    FloatRecord redField{}, greenField{}, blueField{};
    ColourControlZel colour;
    colour.bind(50, &swatch.Color, &redField.Value, &greenField.Value, &blueField.Value);
    ASSERT_TRUE(colour.hasChannelFields());

    // 65535 >> 7 = 511: the field keeps 511, the swatch byte keeps 511 & 255.
    colour.SetValue(-1.0, 32767, 16384, 65535, 32767);
    EXPECT_EQ(redField.Value, static_cast<float>(255 / 2.55));
    EXPECT_EQ(greenField.Value, static_cast<float>(128 / 2.55));
    EXPECT_EQ(blueField.Value, static_cast<float>(511 / 2.55));
    EXPECT_EQ(swatch.Color, 0xFFFF80FFul);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(51)", "sparkControlUpdate(52)",
                                    "sparkControlUpdate(53)"}));

    Host::instance().clearCalls();
    colour.Hide(true);
    colour.Disable(true);
    colour.Disable(true);
    colour.Hide(false);
    EXPECT_EQ(hostCalls(), (Strings{"sparkDisableParameter(1,50)", "sparkDisableParameter(1,51)",
                                    "sparkDisableParameter(1,52)", "sparkDisableParameter(1,53)",
                                    "sparkControlUpdate(51)", "sparkControlUpdate(52)",
                                    "sparkControlUpdate(53)", "sparkControlUpdate(50)",
                                    "sparkEnableParameter(1,50)", "sparkEnableParameter(1,51)",
                                    "sparkEnableParameter(1,52)", "sparkEnableParameter(1,53)"}));
}

TEST(TextControls, FileNameIsCompactedInTheHostBufferAndUpdatedAtPlusSeven) {
    resetHost();
    StringRecord field{};
    std::strcpy(field.Value, " lens grid.aiff\t\n");
    FileControlZel file;
    file.bind(100, field.field());

    char* name = nullptr;
    file.GetValue(-1.0, name);
    EXPECT_EQ(name, field.Value);
    EXPECT_STREQ(field.Value, "lensgrid.aiff");

    char typed[] = "shot 12.aiff";
    file.SetValue(-1.0, typed);
    EXPECT_STREQ(field.Value, "shot 12.aiff");  // blanks stay until the next read
    file.Hide(true);
    file.Disable(true);
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(107)", "sparkDisableParameter(1,100)",
                                    "sparkDisableParameter(1,107)", "sparkControlUpdate(100)"}));

    Host::instance().clearCalls();
    StringRecord textField{};
    std::strcpy(textField.Value, " keep  blanks ");
    TextControlZel text;
    text.bind(60, textField.field());
    text.Sync();  // nothing cached yet: nothing to copy into
    EXPECT_EQ(text.value, nullptr);
    text.GetValue(0.0, name);
    EXPECT_EQ(name, textField.Value);
    EXPECT_STREQ(name, " keep  blanks ");
    char other[] = "new title";
    text.SetValue(-1.0, other);
    EXPECT_STREQ(textField.Value, "new title");
    text.Disable(true);  // a text field is never greyed out
    EXPECT_TRUE(text.isDisabled());
    EXPECT_EQ(hostCalls(), (Strings{"sparkControlUpdate(60)"}));
}
