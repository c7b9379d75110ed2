// The Help button's argument vector: the browser, "-geometry", "+50+50" and
// the page address, every value passed as it stands; refused when missing or
// too long.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HelpTopic.h"

namespace {

using Arguments = std::vector<std::string>;

Arguments arguments(const char* browser, const char* installDir, const char* topic = "t.htm") {
    Arguments out = {"unchanged"};
    if (!buildHelpArguments(out, browser, installDir, topic)) {
        EXPECT_TRUE(out.empty());
        return {"<refused>"};
    }
    return out;
}

}  // namespace

TEST(HelpCommand, ValuesArePassedAsTheyStandAndBadOnesRefused) {
    EXPECT_EQ(arguments("firefox", "/usr/local/Marrowby", "straightlux.htm"),
              (Arguments{"firefox", "-geometry", "+50+50",
                         "file:/usr/local/Marrowby/dl/help/straightlux.htm"}));
    // Only the last extension goes; a leading dot starts none.
    EXPECT_EQ(arguments("b", "/d", "a.b.htm")[3], "file:/d/dl/help/a.b.htm");
    EXPECT_EQ(arguments("b", "/d", ".htm")[3], "file:/d/dl/help/.htm.htm");
    // Shell syntax means nothing: no shell ever reads these.
    EXPECT_EQ(arguments("$(id) b", "/x;rm -rf ~'")[0], "$(id) b");
    EXPECT_EQ(arguments("$(id) b", "/x;rm -rf ~'")[3], "file:/x;rm -rf ~'/dl/help/t.htm");
    EXPECT_EQ(arguments("NAME=value", "/d")[0], "NAME=value");

    EXPECT_EQ(arguments(nullptr, "/d"), Arguments{"<refused>"});
    EXPECT_EQ(arguments("", "/d"), Arguments{"<refused>"});
    EXPECT_EQ(arguments("b", std::string(2 * FILENAME_MAX, 'd').c_str()), Arguments{"<refused>"});
    EXPECT_EQ(arguments(std::string(FILENAME_MAX, 'b').c_str(), "/d"), Arguments{"<refused>"});
}
