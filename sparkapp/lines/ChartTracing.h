// ChartTracing: sparkrun's --trace-chart utility. Reads a picture of the
// bundled test chart (distorted or not), finds its outer grid lines with
// traceChartLines and writes them as a lines file (image pixels, y down),
// ready for --lines. The file is written through an exclusively created
// temporary and renamed into place when complete, like every output.
#pragma once

#include <string>

#include "LinesFile.h"
#include "RunStatus.h"

// *traced (when not null) gets the lines written.
RunStatus traceChartFile(const std::string& imagePath, const std::string& linesPath,
                         LinesFile* traced = nullptr);
