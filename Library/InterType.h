// InterType: the kind of a viewer pointer event, as the host binding derives
// it from the pen pressure of consecutive events. Widgets ignore any other value.
#pragma once

enum InterType {
    INTER_MOVE = 0,     // moved with no button held: highlight only
    INTER_PRESS = 1,    // button went down: pick a handle
    INTER_DRAG = 2,     // moved with the button held: move the picked handle
    INTER_RELEASE = 3,  // button went up: end the drag
};
