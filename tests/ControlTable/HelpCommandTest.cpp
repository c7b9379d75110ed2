// The browser command of the Help button: the usual command for ordinary
// values, one single-quoted word for any other, and refusal when too long.
#include <gtest/gtest.h>

#include <string>

#include "HelpTopic.h"

namespace {

constexpr size_t kCapacity = 40000;

std::string command(const char* browser, const char* installDir, const char* topic) {
    static char text[kCapacity];
    if (!BuildHelpCommand(text, sizeof text, browser, installDir, topic)) return "<refused>";
    return text;
}

}  // namespace

TEST(HelpCommand, OrdinaryValuesGiveTheCommandAsItStands) {
    EXPECT_EQ(command("firefox", "/usr/local/Marrowby", "straightlux.htm"),
              "firefox -geometry +50+50 file:/usr/local/Marrowby/dl/help/straightlux.htm &");
    // The topic loses its last extension only; a leading dot is no extension.
    EXPECT_EQ(command("b", "/d", "a.b.htm"), "b -geometry +50+50 file:/d/dl/help/a.b.htm &");
    EXPECT_EQ(command("b", "/d", "page"), "b -geometry +50+50 file:/d/dl/help/page.htm &");
    EXPECT_EQ(command("b", "/d", ".htm"), "b -geometry +50+50 file:/d/dl/help/.htm.htm &");
    EXPECT_EQ(command("/opt/x-1_2/b,@%=+", "C:/d", "t"),
              "/opt/x-1_2/b,@%=+ -geometry +50+50 file:C:/d/dl/help/t.htm &");
}

TEST(HelpCommand, OtherValuesBecomeOneQuotedWordEach) {
    EXPECT_EQ(command("/my browser/ff", "/d", "t"),
              "'/my browser/ff' -geometry +50+50 file:/d/dl/help/t.htm &");
    EXPECT_EQ(command("ff", "/x;rm -rf ~", "t"),
              "ff -geometry +50+50 'file:/x;rm -rf ~/dl/help/t.htm' &");
    EXPECT_EQ(command("$(id)", "/it's", "t"),
              "'$(id)' -geometry +50+50 'file:/it'\\''s/dl/help/t.htm' &");
}

TEST(HelpCommand, MissingOrOverlongValuesAreRefused) {
    EXPECT_EQ(command(nullptr, "/d", "t"), "<refused>");
    EXPECT_EQ(command("b", "/d", nullptr), "<refused>");
    const std::string longDir(FILENAME_MAX, 'd');
    EXPECT_EQ(command("b", longDir.c_str(), "t"), "<refused>");
    char small[16] = "unchanged";
    EXPECT_FALSE(BuildHelpCommand(small, sizeof small, "firefox", "/d", "t"));
    EXPECT_STREQ(small, "");
    // Quotes grow four-fold inside a quoted word and must still be bounded.
    const std::string quotes(FILENAME_MAX, '\'');
    EXPECT_NE(command(quotes.c_str(), "/d", "t"), "<refused>");
    const std::string tooMany(2 * FILENAME_MAX, '\'');
    EXPECT_EQ(command(tooMany.c_str(), "/d", "t"), "<refused>");
}
