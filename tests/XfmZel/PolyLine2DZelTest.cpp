// One polyline: growth, picking and the point edits.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "PolyLine2DZel.h"

namespace {

// Point i is (i, 10·i), so every shift of the block shows in the values.
tagDPT2 coded(int i) { return {double(i), 10.0 * i}; }

PolyLine2DZel* filled(int n) {
    auto* line = new PolyLine2DZel;
    for (int i = 0; i < n; ++i) line->add_point(coded(i));
    return line;
}

std::vector<double> codes(const PolyLine2DZel& line) {
    std::vector<double> out;
    for (int i = 0; i < line.count; ++i) out.push_back(line.points[i].y / 10.0);
    return out;
}

}  // namespace

TEST(PolyLine2DZel, KeepsOneFreeSlotWhenGrowing) {
    std::unique_ptr<PolyLine2DZel> line(filled(31));
    EXPECT_EQ(line->capacity, 32);
    ASSERT_TRUE(line->add_point(coded(31)));  // would fill the last slot: grows first
    EXPECT_EQ(line->capacity, 64);
    for (int i = 32; i < 64; ++i) line->add_point(coded(i));
    EXPECT_EQ(line->capacity, 128);
    ASSERT_EQ(line->count, 64);
    EXPECT_EQ(line->points[63].x, 63.0);
    EXPECT_EQ(line->points[0].y, 0.0);
}

TEST(PolyLine2DZel, PicksNearestStrictlyInsideToleranceLowestIndexOnTie) {
    PolyLine2DZel line;
    EXPECT_EQ(line.pick_point({0, 0}, 1.0), -1);  // no points
    for (double x : {2.0, 0.0, 5.0}) line.add_point({x, 0.0});
    EXPECT_EQ(line.pick_point({1.0, 0.0}, 1.5), 0);  // points 0 and 1 both at distance 1
    EXPECT_EQ(line.pickRadius2, 2.25);               // the tolerance squared, not the distance
    EXPECT_EQ(line.pick_point({4.75, 0.0}, 0.5), 2);
    EXPECT_EQ(line.pick_point({5.5, 0.0}, 0.5), -1);  // exactly at the tolerance is a miss
    EXPECT_EQ(line.picked, -1);
}

TEST(PolyLine2DZel, PointEditsCheckIndicesAndFollowThePick) {
    std::unique_ptr<PolyLine2DZel> line(filled(3));
    EXPECT_FALSE(line->insert_point(3));
    EXPECT_FALSE(line->delete_point(-1));  // nothing picked
    EXPECT_FALSE(line->set_point({7, 7}, -1));
    EXPECT_FALSE(line->set_point({7, 7}, 3));
    EXPECT_FALSE(line->delete_point(-2));

    line->pick_point(coded(2), 0.1);
    ASSERT_TRUE(line->insert_point(-1));  // copy of the first point in front of it
    EXPECT_EQ(codes(*line), (std::vector<double>{0, 0, 1, 2}));
    EXPECT_EQ(line->picked, 0);
    EXPECT_EQ(line->pickRadius2, 0.0);
    ASSERT_TRUE(line->insert_point(2));
    EXPECT_EQ(codes(*line), (std::vector<double>{0, 0, 1, 1, 2}));
    EXPECT_EQ(line->picked, 3);

    ASSERT_TRUE(line->delete_point(4));  // after the pick: unchanged
    EXPECT_EQ(line->picked, 3);
    ASSERT_TRUE(line->delete_point(0));  // before the pick: one less
    EXPECT_EQ(line->picked, 2);
    ASSERT_TRUE(line->set_point(coded(8), -1));
    EXPECT_EQ(codes(*line), (std::vector<double>{0, 1, 8}));
    ASSERT_TRUE(line->delete_point(-1));  // the picked point itself
    EXPECT_EQ(codes(*line), (std::vector<double>{0, 1}));
    EXPECT_EQ(line->picked, -1);

    PolyLine2DZel empty;
    EXPECT_FALSE(empty.insert_point(-1));
    EXPECT_FALSE(empty.delete_point(0));
    EXPECT_FALSE(empty.set_point({7, 7}, 0));
}
