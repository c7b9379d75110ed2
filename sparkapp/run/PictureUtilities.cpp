// The picture utilities.
#include "PictureUtilities.h"

#include <cstdio>

#include "ChartTracing.h"
#include "ImageCompare.h"
#include "TestChart.h"

RunStatus runMakeChart(const RunOptions& options) {
    return writeTestChart(options.files[0], options.sizeWidth ? options.sizeWidth : kChartWidth,
                          options.sizeHeight ? options.sizeHeight : kChartHeight);
}

RunStatus runSideBySide(const RunOptions& options) {
    return writeSideBySide(options.files[0], options.files[1], options.files[2]);
}

RunStatus runCompare(const RunOptions& options) {
    double mean = 0.0;
    RunStatus status =
        meanAbsDifference(options.files[0], options.files[1], options.marginPercent, &mean);
    if (status.ok())
        std::printf("mean abs difference %.3f (8-bit levels, %g%% margin)\n", mean,
                    options.marginPercent);
    return status;
}

RunStatus runTraceChart(const RunOptions& options) {
    LinesFile traced;
    RunStatus status = traceChartFile(options.files[0], options.files[1], &traced);
    if (status.ok()) {
        size_t points = 0;
        for (const auto& line : traced.lines) points += line.size();
        std::printf("traced %zu grid lines, %zu points: %s\n", traced.lines.size(), points,
                    options.files[1].c_str());
    }
    return status;
}
