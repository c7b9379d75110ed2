#include "PolyLine2DZel.h"

#include <cstring>

#include "zel_heap.h"

namespace {

const char* const kHeapTag = "XfmZel";

tagDPT2* allocate_points(int32_t pointCount) {
    return static_cast<tagDPT2*>(ZEL_MALLOC(kHeapTag, sizeof(tagDPT2) * pointCount));
}

}  // namespace

PolyLine2DZel::PolyLine2DZel() { points = allocate_points(capacity); }

PolyLine2DZel::~PolyLine2DZel() {
    if (points) ZEL_FREE(kHeapTag, points);
}

void PolyLine2DZel::reset() {
    if (points) ZEL_FREE(kHeapTag, points);
    capacity = kInitialCapacity;
    tag = kNoTag;
    points = allocate_points(capacity);
    count = 0;
    picked = kNoPoint;
}

bool PolyLine2DZel::grow_polyline() {
    if (count + 1 != capacity) return true;
    const int32_t grown = 2 * (count + 1);
    void* block = ZEL_REALLOC(kHeapTag, points, sizeof(tagDPT2) * grown);
    if (!block) return false;
    points = static_cast<tagDPT2*>(block);
    capacity = grown;
    return true;
}

bool PolyLine2DZel::add_point(tagDPT2 point) {
    if (!points) return false;
    if (!grow_polyline()) return false;
    points[count++] = point;
    return true;
}

int32_t PolyLine2DZel::pick_point(tagDPT2 position, double tolerance) {
    picked = kNoPoint;
    if (!points || count == 0) return kNoPoint;

    // Only a strictly nearer point replaces the best, so ties go to the lowest index.
    int32_t best = 0;
    double bestDistance2 = 0.0;
    for (int32_t i = 0; i < count; ++i) {
        const double dx = points[i].x - position.x;
        const double dy = points[i].y - position.y;
        const double distance2 = dx * dx + dy * dy;
        if (i == 0 || distance2 < bestDistance2) {
            best = i;
            bestDistance2 = distance2;
        }
    }

    const double tolerance2 = tolerance * tolerance;
    if (!(bestDistance2 < tolerance2)) return kNoPoint;
    picked = best;
    pickRadius2 = tolerance2;
    return picked;
}

bool PolyLine2DZel::resolve_index(int index, int32_t& resolved) const {
    if (!points || count == 0) return false;
    if (index < -1 || index >= count) return false;
    if (index == -1) {
        if (!has_valid_pick()) return false;
        resolved = picked;
        return true;
    }
    resolved = index;
    return true;
}

bool PolyLine2DZel::delete_point(int index) {
    int32_t target = 0;
    if (!resolve_index(index, target)) return false;

    std::memmove(points + target, points + target + 1, sizeof(tagDPT2) * (count - target - 1));
    --count;
    if (picked == target) {
        picked = kNoPoint;
    } else if (picked > target) {
        --picked;
    }
    return true;
}

bool PolyLine2DZel::insert_point(int index) {
    if (!points || count == 0) return false;
    if (index < -1 || index >= count) return false;
    if (!grow_polyline()) return false;

    // Index −1 puts the copy in front of the first point; otherwise after point `index`.
    const int32_t source = index < 0 ? 0 : index;
    std::memmove(points + source + 1, points + source, sizeof(tagDPT2) * (count - source));
    picked = index < 0 ? 0 : index + 1;
    ++count;
    pickRadius2 = 0.0;
    return true;
}

bool PolyLine2DZel::set_point(tagDPT2 point, int index) {
    int32_t target = 0;
    if (!resolve_index(index, target)) return false;
    points[target] = point;
    return true;
}

void PolyLine2DZel::set_tag(int newTag) { tag = newTag; }
