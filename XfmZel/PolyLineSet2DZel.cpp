#include "PolyLineSet2DZel.h"

#include <cmath>
#include <new>

PolyLineSet2DZel::~PolyLineSet2DZel() { reset(); }

PolyLine2DZel* PolyLineSet2DZel::new_line(int tag) {
    PolyLine2DZel* line = new (std::nothrow) PolyLine2DZel();
    if (!line) return nullptr;
    line->set_tag(tag);
    line->next = head;
    head = line;
    ++lineCount;
    current = line;
    return line;
}

bool PolyLineSet2DZel::delete_line(PolyLine2DZel* line) {
    if (!line) return false;
    PolyLine2DZel** link = &head;
    while (*link && *link != line) link = &(*link)->next;
    if (!*link) return false;

    *link = line->next;
    if (current == line) current = nullptr;
    delete line;
    return true;
}

PolyLine2DZel* PolyLineSet2DZel::pick_line(tagDPT2 position, double tolerance) {
    // Quirk kept on purpose: every pick stores tol², so no later line is ever "nearer" and the
    // newest line with a point in range wins, not the line with the nearest point.
    PolyLine2DZel* best = nullptr;
    double bestRadius = 0.0;
    for (PolyLine2DZel* line = head; line; line = line->next) {
        if (line->pick_point(position, tolerance) < 0) continue;
        const double radius = std::sqrt(line->pickRadius2);
        if (!best || radius < bestRadius) {
            best = line;
            bestRadius = radius;
        }
    }
    current = best;
    return best;
}

PolyLine2DZel* PolyLineSet2DZel::find_line(int tag) const {
    for (PolyLine2DZel* line = head; line; line = line->next) {
        if (line->tag == tag) return line;
    }
    return nullptr;
}

void PolyLineSet2DZel::reset() {
    while (head) {
        PolyLine2DZel* line = head;
        head = line->next;
        delete line;
    }
    current = nullptr;
}
