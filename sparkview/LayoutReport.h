// LayoutReport: for end-to-end tests that drive the real program with X
// events, what an accessibility tool would tell them: where each named
// widget is on the screen and where the frame is in the viewer. When the
// environment names a file in SPARKVIEW_LAYOUT, the window writes it (JSON,
// replaced whole) each time the picture settles:
//   {"settled": N, "viewer": [x, y, w, h], "scale": s,
//    "topLeftPixel": [x, y],  (screen position of the image's top-left pixel centre)
//    "shown": "result" | "input", "dirty": bool,
//    "widgets": {"AutoFind": [x, y, w, h], ...}}
// in the screen's pixels, y down.
#pragma once

class MainWindow;

void writeLayoutReport(MainWindow& window, int settledCount);
