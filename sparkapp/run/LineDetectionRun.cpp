// Automatic lines for sparkrun.
#include "LineDetectionRun.h"

#include <OutputFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "ImageFiles.h"
#include "LineDetection.h"
#include "OutputPaths.h"

namespace {
bool parseFrameNumber(const std::string& text, unsigned* frame) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
    errno = 0;
    const unsigned long value = std::strtoul(text.c_str(), nullptr, 10);
    if (errno || value > 0xffffffffUL) return false;
    *frame = static_cast<unsigned>(value);
    return true;
}

// Up to kSpreadFrames of the frames, evenly spread, first and last included.
std::vector<unsigned> spread(const std::vector<unsigned>& frames) {
    if (frames.size() <= kSpreadFrames) return frames;
    std::vector<unsigned> chosen;
    for (unsigned i = 0; i < kSpreadFrames; ++i)
        chosen.push_back(frames[i * (frames.size() - 1) / (kSpreadFrames - 1)]);
    return chosen;
}

// A still stands for every frame: it is searched once.
std::vector<unsigned> framesToSearch(const RunOptions& options, const FramePattern& input,
                                     const std::vector<unsigned>& runFrames) {
    if (!input.isSequence()) return {runFrames.front()};
    return detectionFrames(options, runFrames);
}

void report(const RunOptions& options, const LinesFound& found, const std::string& where) {
    if (!options.verbose) return;
    size_t points = 0;
    for (const auto& line : found.lines.lines) points += line.size();
    const LineDetection& d = found.detection;
    std::printf("lines: %zu found in %s, %zu points; %zu rejected", found.lines.lines.size(),
                where.c_str(), points, d.rejected.size());
    if (d.modelFound)
        std::printf("; the detector's own estimate Radial1=%.5f Radial2=%.5f", d.radial1,
                    d.radial2);
    std::printf("\n%s", rejectionReport(d).c_str());
    std::fflush(stdout);
}

// Reads and pools the frames; `where` names them for messages.
RunStatus detectFrames(const RunOptions& options, const FramePattern& input,
                       const std::vector<unsigned>& frames, LinesFound* found) {
    LineDetectionPool pool(options.processors);
    std::string where = input.fileFor(frames.front());
    if (frames.size() > 1)
        where = std::to_string(frames.size()) + " frames of " + input.text() + " (" +
                std::to_string(frames.front()) + " to " + std::to_string(frames.back()) + ")";
    for (unsigned frame : frames) {
        FilePixels picture;
        int depth = 0;
        const std::string name = input.fileFor(frame);
        RunStatus status = readImage(name, options.depth, &picture, &depth);
        if (status.ok()) status = pool.add(picture, name);
        if (!status.ok()) return status;
    }
    const RunStatus status = pool.select(where, found);
    if (status.ok()) report(options, *found, where);
    return status;
}
}  // namespace

bool parseDetectFrames(const std::string& text, std::vector<unsigned>* frames, std::string* error) {
    frames->clear();
    size_t start = 0;
    while (start <= text.size()) {
        const size_t comma = std::min(text.find(',', start), text.size());
        const std::string item = text.substr(start, comma - start);
        const size_t dash = item.find('-');
        unsigned first = 0, last = 0;
        const bool ok = dash == std::string::npos
                            ? parseFrameNumber(item, &first) && (last = first, true)
                            : parseFrameNumber(item.substr(0, dash), &first) &&
                                  parseFrameNumber(item.substr(dash + 1), &last) && first <= last;
        if (!ok || last - first > 100000) {
            *error =
                "--detect-frames takes frame numbers and ranges A-B separated by commas "
                "(such as 1001,1050,1090-1100), not \"" +
                text + "\"";
            return false;
        }
        for (unsigned f = first; f <= last; ++f) {
            frames->push_back(f);
            if (f == last) break;
        }
        start = comma + 1;
    }
    std::sort(frames->begin(), frames->end());
    frames->erase(std::unique(frames->begin(), frames->end()), frames->end());
    return true;
}

std::vector<unsigned> detectionFrames(const RunOptions& options,
                                      const std::vector<unsigned>& runFrames) {
    std::vector<unsigned> frames;
    std::string error;
    if (!options.detectFrames.empty() && parseDetectFrames(options.detectFrames, &frames, &error))
        return frames;
    return spread(runFrames);
}

RunStatus detectInputLines(const RunOptions& options, const FramePattern& input,
                           const std::vector<unsigned>& runFrames, LinesFile* lines) {
    LinesFound found;
    const std::vector<unsigned> frames = framesToSearch(options, input, runFrames);
    RunStatus status = detectFrames(options, input, frames, &found);
    if (status.ok()) *lines = found.lines;
    return status;
}

RunStatus runDetectLines(const RunOptions& options) {
    const std::string& output = options.detectLinesPath;
    RunStatus status = checkOutputFolder(output);
    if (!status.ok()) return status;
    FramePattern input;
    std::string error;
    if (!FramePattern::parse(options.files[0], &input, &error))
        return RunStatus::failure(ExitCode::Usage, error);
    std::vector<unsigned> runFrames = {1};
    if (!options.frames.empty())
        parseFrameRange(options.frames, &runFrames, &error);
    else if (input.isSequence())
        runFrames = input.existingFrames();
    if (runFrames.empty())
        return RunStatus::failure(ExitCode::Input, "no input files match " + input.text());
    LinesFound found;
    status = detectFrames(options, input, framesToSearch(options, input, runFrames), &found);
    if (!status.ok()) return status;
    const std::string text = formatLinesText(found.lines);
    safeio::OutputFile file;
    if (!file.open(output, &error) || !file.write(text.data(), text.size()) ||
        !file.commit(&error)) {
        if (error.empty()) error = file.failure();
        return RunStatus::failure(ExitCode::Output, "cannot write " + output + ": " + error);
    }
    size_t points = 0;
    for (const auto& line : found.lines.lines) points += line.size();
    std::printf("detected %zu lines, %zu points: %s\n", found.lines.lines.size(), points,
                output.c_str());
    return RunStatus::success();
}
