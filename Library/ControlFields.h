// Views of the host's field records, as the framework's controls and overlay
// widgets see them: pointers to the members a control reads and writes,
// filled by the host binding from its exported records. Values are in host
// units (percentages where the plug-in works in fractions, 0-based menu
// indices). A view with a null value pointer is unbound and ignored.
#pragma once

// A float field: value, and the range that greying out collapses.
struct ZelFloatField {
    float* value = nullptr;
    float* min = nullptr;
    float* max = nullptr;
};

// An integer field.
struct ZelIntField {
    int* value = nullptr;
    int* min = nullptr;
    int* max = nullptr;
};

// A menu: the selected 0-based index and the number of entries shown.
struct ZelListField {
    int* index = nullptr;
    int* entryCount = nullptr;
};

// A text field's buffer and its size in bytes, terminator included.
struct ZelTextField {
    char* text = nullptr;
    int capacity = 0;
};
