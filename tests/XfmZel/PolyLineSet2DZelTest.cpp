// The line set: list order, picking across lines, deleting and counting.
#include <gtest/gtest.h>

#include "PolyLineSet2DZel.h"

TEST(PolyLineSet2DZel, NewestLineWithAPointInRangeWinsThePick) {
    PolyLineSet2DZel set;
    EXPECT_EQ(set.pick_line({0, 0}, 0.01), nullptr);  // empty set

    PolyLine2DZel* older = set.new_line(1);
    older->add_point({0.500, 0.5});
    PolyLine2DZel* newer = set.new_line(2);
    newer->add_point({0.508, 0.5});
    EXPECT_EQ(set.head, newer);
    EXPECT_EQ(newer->next, older);
    EXPECT_EQ(set.current, newer);
    EXPECT_EQ(newer->tag, 2);

    // The older line's point is nearer, yet the newer line wins.
    EXPECT_EQ(set.pick_line({0.501, 0.5}, 0.01), newer);
    EXPECT_EQ(set.current, newer);
    EXPECT_EQ(older->picked, 0);
    EXPECT_EQ(newer->picked, 0);

    // Only the older line in range: every line's pick is brought up to date.
    EXPECT_EQ(set.pick_line({0.495, 0.5}, 0.01), older);
    EXPECT_EQ(newer->picked, -1);
    EXPECT_EQ(set.pick_line({0.9, 0.9}, 0.01), nullptr);
    EXPECT_EQ(set.current, nullptr);
}

TEST(PolyLineSet2DZel, DeletesOnlyItsOwnLinesAndNeverLowersTheCount) {
    PolyLineSet2DZel set;
    PolyLineSet2DZel other;
    PolyLine2DZel* foreign = other.new_line(9);
    PolyLine2DZel* first = set.new_line(5);
    PolyLine2DZel* second = set.new_line(6);
    PolyLine2DZel* third = set.new_line(5);

    EXPECT_EQ(set.find_line(5), third);  // first in list order
    EXPECT_EQ(set.find_line(7), nullptr);
    EXPECT_FALSE(set.delete_line(foreign));
    EXPECT_FALSE(set.delete_line(nullptr));

    ASSERT_TRUE(set.delete_line(second));  // from the middle of the list
    EXPECT_EQ(set.current, third);
    EXPECT_EQ(third->next, first);
    ASSERT_TRUE(set.delete_line(third));  // the current line
    EXPECT_EQ(set.current, nullptr);
    EXPECT_EQ(set.head, first);
    EXPECT_EQ(set.lineCount, 3);

    set.reset();
    EXPECT_EQ(set.head, nullptr);
    EXPECT_EQ(set.lineCount, 3);
    set.new_line(0);
    EXPECT_EQ(set.lineCount, 4);
}
