// The Help button's command: as it stands for ordinary values, one
// single-quoted word for any other value, refused when it does not fit.
#include <gtest/gtest.h>

#include <string>

#include "HelpTopic.h"

namespace {

std::string command(const char* browser, const char* installDir, const char* topic = "t.htm") {
    static char text[40000];
    if (!buildHelpCommand(text, sizeof text, browser, installDir, topic)) return "<refused>";
    return text;
}

}  // namespace

TEST(HelpCommand, OrdinaryValuesStandOtherValuesAreQuotedLongOnesRefused) {
    EXPECT_EQ(command("firefox", "/usr/local/Marrowby", "straightlux.htm"),
              "firefox -geometry +50+50 file:/usr/local/Marrowby/dl/help/straightlux.htm &");
    // Only the last extension goes; a leading dot starts none.
    EXPECT_EQ(command("b", "/d", "a.b.htm"), "b -geometry +50+50 file:/d/dl/help/a.b.htm &");
    EXPECT_EQ(command("b", "/d", ".htm"), "b -geometry +50+50 file:/d/dl/help/.htm.htm &");
    EXPECT_EQ(command("/x-1_2/b,@%=+", "C:/d"),
              "/x-1_2/b,@%=+ -geometry +50+50 file:C:/d/dl/help/t.htm &");

    EXPECT_EQ(command("/my b/ff", "/x;rm -rf ~"),
              "'/my b/ff' -geometry +50+50 'file:/x;rm -rf ~/dl/help/t.htm' &");
    EXPECT_EQ(command("$(id)", "/it's"),
              "'$(id)' -geometry +50+50 'file:/it'\\''s/dl/help/t.htm' &");

    EXPECT_EQ(command(nullptr, "/d"), "<refused>");
    EXPECT_EQ(command("b", std::string(FILENAME_MAX, 'd').c_str()), "<refused>");
    // A quote grows four-fold inside a quoted word and stays bounded.
    EXPECT_NE(command(std::string(FILENAME_MAX, '\'').c_str(), "/d"), "<refused>");
    EXPECT_EQ(command(std::string(2 * FILENAME_MAX, '\'').c_str(), "/d"), "<refused>");
    char small[16] = "unchanged";
    EXPECT_FALSE(buildHelpCommand(small, sizeof small, "firefox", "/d", "t"));
    EXPECT_STREQ(small, "");
}
