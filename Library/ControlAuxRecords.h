// Auxiliary records of the control objects: what a control keeps beside the
// host's own record so that it can grey a field out and bring it back. Ranges
// are in host units (percentages for positions and sizes, as the field shows
// them). The host binding declares one of these per bound control
// (AuxZelFloat6, AuxZelPosition13, AuxZelList17, ...); binding a control fills
// it from the host record's current range, so Disable(true) then
// Disable(false) restores what the record had at start-up.
#pragma once

// Saved range of a one-field numeric control (Integer, Float, Angle, Size).
struct ZelAuxFloatRange {
    float min = 0.0f;
    float max = 0.0f;
};

// Saved ranges of the two fields of a Position control.
struct ZelAuxPositionRange {
    float xMin = 0.0f;
    float xMax = 0.0f;
    float yMin = 0.0f;
    float yMax = 0.0f;
};

// Saved shape of a List control's menu record.
struct ZelAuxList {
    int entryCount = 0;
};

// Check boxes that switch off when their owner is switched on: member i has
// host control number numbers[i] and its host value byte at values[i].
constexpr int kZelExclusionGroupCapacity = 124;

struct ZelExclusionGroup {
    int count = 0;
    int numbers[kZelExclusionGroupCapacity] = {};
    char* values[kZelExclusionGroupCapacity] = {};

    // Appends a member; false when the group is full or the byte is null.
    bool Add(int number, char* value) {
        if (count >= kZelExclusionGroupCapacity || value == nullptr) return false;
        numbers[count] = number;
        values[count] = value;
        ++count;
        return true;
    }
};
