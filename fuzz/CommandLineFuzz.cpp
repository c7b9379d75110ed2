// Fuzz target: sparkrun's command line, its option rules, and what it
// carries: control values (--set, --key) checked against the real plug-in's
// records, frame ranges, file-name patterns and sizes. The input is split at
// NUL bytes into the arguments after the program name.
//
// Beyond not crashing: a refused command line or option set is a usage
// error; a frame
// range is a run of consecutive frames of at most a million; a value that
// --set or --key takes leaves its record finite and inside its range, a
// menu on one of its entries, a check box 0 or 1; two file patterns share a
// file exactly when a frame's name of one is a frame's name of the other.
#include <SimHost.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "ControlNames.h"
#include "FramePattern.h"
#include "OptionRules.h"

namespace {
const size_t kMaxArguments = 64;
const size_t kMaxFrames = 1000000;

simhost::Plugin* plugin = nullptr;
ControlNames* table = nullptr;
std::vector<std::vector<unsigned char>> pristine;

void fail(const char* rule, const std::string& detail) {
    std::fprintf(stderr, "command line broke a rule: %s (%s)\n", rule, detail.c_str());
    std::abort();
}

size_t recordBytes(ControlKind kind) {
    switch (kind) {
        case ControlKind::Float:
            return sizeof(SparkUserFloatStruct);  // the larger of the two float records
        case ControlKind::Integer:
            return sizeof(SparkIntStruct);
        case ControlKind::Menu:
            return sizeof(SparkPupStruct);
        case ControlKind::Check:
            return sizeof(SparkBooleanStruct);
        case ControlKind::Text:
            return sizeof(SparkStringStruct);
        case ControlKind::Colour:
            return sizeof(SparkColorStruct);
        case ControlKind::Button:
            break;
    }
    return 0;
}

size_t bytesOf(const Control& control) {
    // A plain float record is smaller than a user float.
    return control.recordKind == "Float" ? sizeof(SparkFloatStruct) : recordBytes(control.kind);
}

void restoreRecords() {
    const std::vector<Control>& controls = table->controls();
    for (size_t i = 0; i < controls.size(); ++i)
        if (!pristine[i].empty())
            std::memcpy(controls[i].record, pristine[i].data(), pristine[i].size());
}

void checkValue(const Control& control) {
    if (control.kind == ControlKind::Float) {
        const auto* record = static_cast<const SparkFloatStruct*>(control.record);
        if (!std::isfinite(record->Value)) fail("a float is not finite", control.symbol);
        if (record->Min < record->Max &&
            (record->Value < record->Min || record->Value > record->Max))
            fail("a float is outside its range", control.symbol);
    } else if (control.kind == ControlKind::Menu) {
        const int index = static_cast<const SparkPupStruct*>(control.record)->Value;
        if (index < 0 || index >= static_cast<int>(control.entries.size()))
            fail("a menu index is not an entry", control.symbol);
    } else if (control.kind == ControlKind::Check) {
        const char on = static_cast<const SparkBooleanStruct*>(control.record)->Value;
        if (on != 0 && on != 1) fail("a check box is not 0 or 1", control.symbol);
    }
}
// The first two files as patterns over the run's frames: a shared file that
// sharesFile names is one, and one found at the range's ends, or at the
// frames the input's bytes give, is not missed.
void checkSharing(const RunOptions& options, const uint8_t* data, size_t size) {
    if (options.files.size() < 2) return;
    FramePattern a, b;
    std::string error;
    if (!FramePattern::parse(options.files[0], &a, &error) ||
        !FramePattern::parse(options.files[1], &b, &error))
        return;
    unsigned first = 0;
    unsigned last = 4294967295u;
    std::vector<unsigned> frames;
    if (!options.frames.empty() && parseFrameRange(options.frames, &frames, &error)) {
        first = frames.front();
        last = frames.back();
    }
    auto inRange = [&](unsigned f) { return f >= first && f <= last; };
    unsigned frame = 0;
    unsigned theirs = 0;
    const bool shared = a.sharesFile(b, first, last, &frame);
    if (shared && (!inRange(frame) || !b.holds(a.fileFor(frame), &theirs) ||
                   (b.isSequence() && !inRange(theirs))))
        fail("a shared file that is not one", options.files[0] + " " + options.files[1]);
    std::vector<unsigned> tried = {first, last, first + 1, last - 1};
    for (size_t i = 0; i + 4 <= size && i < 64; i += 4) {
        unsigned f = 0;
        std::memcpy(&f, data + i, 4);
        tried.push_back(f);
    }
    for (unsigned f : tried)
        if (inRange(f) && b.holds(a.fileFor(f), &theirs) && (!b.isSequence() || inRange(theirs)) &&
            !shared)
            fail("a shared file missed", options.files[0] + " " + options.files[1]);
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    plugin = new simhost::Plugin;
    std::string error;
    if (!plugin->load(STRAIGHTLUX_PLUGIN, &error)) {
        std::fprintf(stderr, "cannot load %s: %s\n", STRAIGHTLUX_PLUGIN, error.c_str());
        std::exit(1);
    }
    table = new ControlNames(plugin->records());
    for (const Control& control : table->controls()) {
        const auto* bytes = static_cast<const unsigned char*>(control.record);
        pristine.emplace_back(bytes, bytes + bytesOf(control));
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> words = {"sparkrun"};
    std::string word;
    for (size_t i = 0; i < size && words.size() < kMaxArguments; ++i) {
        if (data[i] == 0) {
            words.push_back(word);
            word.clear();
        } else {
            word += static_cast<char>(data[i]);
        }
    }
    if (!word.empty() && words.size() < kMaxArguments) words.push_back(word);
    std::vector<char*> argv;
    for (std::string& each : words) argv.push_back(&each[0]);
    argv.push_back(nullptr);

    RunOptions options;
    const RunStatus status =
        parseCommandLine(static_cast<int>(words.size()), argv.data(), &options);
    if (!status.ok()) {
        if (status.code != ExitCode::Usage)
            fail("a refused command line is not a usage error", status.message);
        return 0;
    }
    const RunStatus valid = validate(options);
    if (!valid.ok() && valid.code != ExitCode::Usage)
        fail("a refused option set is not a usage error", valid.message);
    for (const std::string& file : options.files) {
        FramePattern pattern;
        std::string error;
        if (!FramePattern::parse(file, &pattern, &error)) continue;
        pattern.fileFor(0);
        pattern.fileFor(4294967295u);
        pattern.text();
    }
    if (!options.frames.empty()) {
        std::vector<unsigned> frames;
        std::string error;
        if (parseFrameRange(options.frames, &frames, &error)) {
            if (frames.empty() || frames.size() > kMaxFrames)
                fail("a frame range size", options.frames);
            for (size_t i = 1; i < frames.size(); ++i)
                if (frames[i] != frames[i - 1] + 1)
                    fail("a frame range is not consecutive", options.frames);
        }
    }
    checkSharing(options, data, size);
    restoreRecords();
    for (const std::string& assignment : options.sets) {
        const Control* control = nullptr;
        if (table->set(assignment, &control).ok()) checkValue(*control);
    }
    for (const std::string& key : options.keys) {
        const Control* control = nullptr;
        int frame = 0;
        float value = 0.0f;
        if (!table->parseKey(key, &control, &frame, &value).ok()) continue;
        const auto* record = static_cast<const SparkFloatStruct*>(control->record);
        if (frame < 0 || !std::isfinite(value) ||
            (record->Min < record->Max && (value < record->Min || value > record->Max)))
            fail("a key is outside its control's range", key);
    }
    table->listing();
    return 0;
}
