// A fake host drawing table for overlay tests: records each begin/end pair
// as one primitive with its mode, the colour current at its begin and its
// vertices, and every control update the widgets send.
#pragma once

#include <vector>

#include "ZelHost.h"

namespace overlaytest {

struct Vertex {
    float x, y;
};

struct Primitive {
    unsigned int mode = 0;
    float colour[3] = {0, 0, 0};
    std::vector<Vertex> vertices;
};

struct Recording {
    std::vector<Primitive> primitives;
    std::vector<int> updates;  // control numbers, in order
    float colour[3] = {0, 0, 0};
    bool open = false;
};

inline Recording& recording() {
    static Recording r;
    return r;
}

// Installs the recorder as the host's drawing calls and control update, and
// clears what was recorded.
inline void startRecording() {
    Recording& r = recording();
    r = Recording{};
    ZelHost& host = zelHost();
    host.drawing.begin = [](unsigned int mode) {
        Primitive p;
        p.mode = mode;
        for (int i = 0; i < 3; ++i) p.colour[i] = recording().colour[i];
        recording().primitives.push_back(p);
        recording().open = true;
    };
    host.drawing.end = [] { recording().open = false; };
    host.drawing.vertex = [](float x, float y) {
        if (recording().open) recording().primitives.back().vertices.push_back({x, y});
    };
    host.drawing.colour = [](float red, float green, float blue) {
        recording().colour[0] = red;
        recording().colour[1] = green;
        recording().colour[2] = blue;
    };
    host.controlUpdate = [](int control) { recording().updates.push_back(control); };
}

inline const std::vector<Primitive>& primitives() { return recording().primitives; }

}  // namespace overlaytest
