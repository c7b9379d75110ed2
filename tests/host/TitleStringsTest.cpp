// Title copies: stripping blanks and newlines, adding and removing the lock mark.
#include <gtest/gtest.h>

#include "TitleStrings.h"

TEST(TitleStrings, StripAndLockMarks) {
    char text[64];
    EXPECT_STREQ(strcpy_strip(text, "Sampling: Linear  \n \n"), "Sampling: Linear");
    EXPECT_STREQ(strcpy_strip(text, "  inner  blanks stay"), "  inner  blanks stay");
    EXPECT_STREQ(strcpy_strip(text, " \n "), "");

    EXPECT_STREQ(strcpy_addlock(text, "Radial1"), "Radial1*");
    EXPECT_STREQ(strcpy_addlock(text, ""), "*");

    EXPECT_STREQ(strcpy_dellock(text, "Radial1**"), "Radial1");
    EXPECT_STREQ(strcpy_dellock(text, "Ra*dial1"), "Ra*dial1");
    EXPECT_STREQ(strcpy_dellock(text, "Radial1* "), "Radial1* ");
}
