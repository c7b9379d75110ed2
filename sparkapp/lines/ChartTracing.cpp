// The --trace-chart utility.
#include "ChartTracing.h"

#include <OutputFile.h>

#include "ChartTracer.h"
#include "ImageFiles.h"
#include "OutputPaths.h"

RunStatus traceChartFile(const std::string& imagePath, const std::string& linesPath,
                         LinesFile* traced) {
    RunStatus status = checkOutputFolder(linesPath);
    if (!status.ok()) return status;
    FilePixels picture;
    int depth = 0;
    status = readImage(imagePath, 0, &picture, &depth);
    if (!status.ok()) return status;
    const LinesFile lines = traceChartLines(picture);
    if (lines.lines.empty())
        return RunStatus::failure(ExitCode::Input,
                                  "no grid line of the test chart found in " + imagePath);
    // What is written must read back as it would for --lines.
    const std::string text = formatLinesText(lines);
    LinesFile again;
    std::string fault;
    if (!parseLinesText(text, again, fault) ||
        !checkLinesInFrame(again, picture.width, picture.height, fault))
        return RunStatus::failure(ExitCode::Internal, "internal error: the lines traced in " +
                                                          imagePath + " would not read back (" +
                                                          fault + ")");
    safeio::OutputFile file;
    std::string error;
    if (!file.open(linesPath, &error) || !file.write(text.data(), text.size()) ||
        !file.commit(&error)) {
        if (error.empty()) error = file.failure();
        return RunStatus::failure(ExitCode::Output, "cannot write " + linesPath + ": " + error);
    }
    if (traced) *traced = lines;
    return RunStatus::success();
}
