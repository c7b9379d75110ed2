// The set of drawn reference lines (points in fractions of the frame) and the
// line last created or picked. Lines form a singly linked list from `head`,
// newest first: walk it with `for (line = head; line; line = line->next)`.
// The set owns its lines; `lineCount` counts the lines ever created.
#pragma once

#include <cstdint>

#include "PolyLine2DZel.h"
#include "tagDPT.h"

class PolyLineSet2DZel {
  public:
    PolyLineSet2DZel() = default;
    virtual ~PolyLineSet2DZel();
    PolyLineSet2DZel(const PolyLineSet2DZel&) = delete;
    PolyLineSet2DZel& operator=(const PolyLineSet2DZel&) = delete;

    // A new empty line with the given tag, put at the head and made current; null on failure.
    PolyLine2DZel* new_line(int tag);
    // Unlinks and destroys a line of this set; false for a line the set does not hold.
    bool delete_line(PolyLine2DZel* line);
    // Brings every line's pick up to date and makes the winning line current.
    PolyLine2DZel* pick_line(tagDPT2 position, double tolerance);
    PolyLine2DZel* find_line(int tag) const;
    // Destroys every line; `lineCount` is left as it is.
    void reset();

    int32_t reserved = -1;  // kept at −1; nothing reads it
    PolyLine2DZel* head = nullptr;
    int32_t lineCount = 0;
    PolyLine2DZel* current = nullptr;
    intptr_t spare = 0;
};
