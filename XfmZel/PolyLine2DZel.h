// One drawn reference line: a growable block of points, each x then y in
// fractions of the frame's width and height, with an optionally picked point
// and a link to the next line of its set. The block always keeps one free
// slot, so it grows before the point that would fill it (32, 64, 128 points).
// Point indices are 0-based; −1 as an index means "the picked point" (or, for
// insert_point, "in front of the first point"). Failures return false or −1.
#pragma once

#include <cstdint>

#include "tagDPT.h"

class PolyLine2DZel {
  public:
    static constexpr int32_t kInitialCapacity = 32;
    static constexpr int32_t kNoPoint = -1;
    static constexpr int32_t kNoTag = -1;

    PolyLine2DZel();
    virtual ~PolyLine2DZel();
    PolyLine2DZel(const PolyLine2DZel&) = delete;
    PolyLine2DZel& operator=(const PolyLine2DZel&) = delete;

    // Drops every point and starts again with a fresh block of 32 points.
    void reset();
    // Makes room for one more point while keeping a free slot.
    bool grow_polyline();
    bool add_point(tagDPT2 point);
    // Index of the nearest point strictly within `tolerance` of `position`, or −1.
    int32_t pick_point(tagDPT2 position, double tolerance);
    bool delete_point(int index);
    // Duplicates point `index` right after itself and picks the copy.
    bool insert_point(int index);
    bool set_point(tagDPT2 point, int index);
    void set_tag(int newTag);

    int32_t tag = kNoTag;
    tagDPT2* points = nullptr;
    int32_t count = 0;
    int32_t capacity = kInitialCapacity;
    int32_t picked = kNoPoint;
    // Square of the tolerance of the last successful pick; 0 after an insert.
    double pickRadius2 = 0.0;
    PolyLine2DZel* next = nullptr;

  private:
    bool has_valid_pick() const { return picked >= 0 && picked < count; }
    // −1 resolves to the picked point; false when the index names no point.
    bool resolve_index(int index, int32_t& resolved) const;
};
