// The progress line: the rate so far and the time left at that rate.
#include <gtest/gtest.h>

#include "ProgressBar.h"

TEST(ProgressBar, TheLineTellsTheRateAndTheTimeLeftAtIt) {
    // 3 of 24 in 1.5 s: 2 frames a second, 21 left take 10.5 s, shown as 0:11.
    EXPECT_EQ(progressLine(3, 24, 1003, 1.5),
              "[###...........................] 3/24 frames (frame 1003)  2.0 fps  0:11 left");
    // An hour and more: 9,999 frames at one a second.
    EXPECT_EQ(progressLine(1, 10000, 1, 1.0),
              "[..............................] 1/10000 frames (frame 1)  1.0 fps  2:46:39 left");
    // Done: nothing left; before the first frame, no rate yet.
    EXPECT_EQ(progressLine(4, 4, 7, 2.0),
              "[##############################] 4/4 frames (frame 7)  2.0 fps  0:00 left");
    EXPECT_EQ(progressLine(0, 4, 0, 0.0), "[..............................] 0/4 frames (frame 0)");
}
