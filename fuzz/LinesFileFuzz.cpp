// Fuzz target: sparkrun's lines file reader fed any bytes. Beyond not
// crashing: a refusal names a line and column, an accepted file has lines of
// at least two finite points and no more lines and points than a lines file
// holds, and what it formats reads back as the same number of lines and
// points.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "LinesFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    LinesFile lines;
    std::string error;
    if (!parseLinesText(text, lines, error)) {
        if (error.rfind("line ", 0) != 0 || !lines.lines.empty()) std::abort();
        return 0;
    }
    for (const auto& line : lines.lines) {
        if (line.size() < 2) std::abort();
        for (const LinePoint& p : line)
            if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
    }
    size_t points = 0;
    for (const auto& line : lines.lines) points += line.size();
    if (lines.lines.size() > kMaxLines || points > kMaxPoints) std::abort();
    checkLinesInFrame(lines, 64, 48, error);
    coincidentPoints(lines);
    LinesFile again;
    if (!parseLinesText(formatLinesText(lines), again, error)) {
        // A point too large for three decimals' formatting still reads back.
        std::abort();
    }
    if (again.lines.size() != lines.lines.size()) std::abort();
    for (size_t l = 0; l < lines.lines.size(); ++l)
        if (again.lines[l].size() != lines.lines[l].size()) std::abort();
    return 0;
}
