// Frame-sequence file names.
#include "FramePattern.h"

#include <OutputFile.h>
#include <OutputPaths.h>
#include <dirent.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {
const int kMaxPadding = 10;  // an unsigned frame number has at most 10 digits
const unsigned kMaxFrameCount = 1000000;

bool allDigits(const std::string& text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
}

bool parseFrame(const std::string& text, unsigned* frame) {
    if (!allDigits(text) || text.size() > static_cast<size_t>(kMaxPadding)) return false;
    errno = 0;
    const unsigned long value = std::strtoul(text.c_str(), nullptr, 10);
    if (errno || value > UINT_MAX) return false;
    *frame = static_cast<unsigned>(value);
    return true;
}
}  // namespace

FramePattern FramePattern::single(const std::string& name) {
    FramePattern pattern;
    pattern.name_ = pattern.prefix_ = name;
    return pattern;
}

bool FramePattern::parse(const std::string& name, FramePattern* pattern, std::string* error) {
    const size_t slash = name.rfind('/');
    const size_t start = slash == std::string::npos ? 0 : slash + 1;
    FramePattern found;
    found.name_ = name;
    found.prefix_ = name;
    int marks = 0;
    for (size_t i = start; i < name.size(); ++i) {
        size_t end = i;
        int padding = 0;
        if (name[i] == '#') {
            while (end < name.size() && name[end] == '#') ++end;
            padding = static_cast<int>(end - i);
        } else if (name[i] == '%') {
            end = i + 1;
            while (end < name.size() && std::isdigit(static_cast<unsigned char>(name[end]))) ++end;
            if (end >= name.size() || name[end] != 'd') continue;  // a literal '%'
            const std::string width = name.substr(i + 1, end - i - 1);
            if (!width.empty() && width[0] != '0') {
                *error = "bad frame field in " + name + ": use %d, %0Nd or a run of #";
                return false;
            }
            // printf reads the leading zeros as the flag and the rest as the width;
            // a width of many digits would overflow an int.
            const size_t digits = width.find_first_not_of('0');
            const std::string figure = digits == std::string::npos ? "" : width.substr(digits);
            padding = figure.size() > 2 ? kMaxPadding + 1 : std::atoi(figure.c_str());
            ++end;
        } else {
            continue;
        }
        if (padding > kMaxPadding) {
            *error = "frame padding above " + std::to_string(kMaxPadding) + " in " + name;
            return false;
        }
        if (++marks > 1) {
            *error = "more than one frame number mark in " + name;
            return false;
        }
        found.prefix_ = name.substr(0, i);
        found.suffix_ = name.substr(end);
        found.padding_ = padding;
        found.marked_ = true;
        i = end - 1;
    }
    *pattern = found;
    return true;
}

std::string FramePattern::fileFor(unsigned frame) const {
    if (!marked_) return prefix_;
    char digits[32];
    std::snprintf(digits, sizeof digits, "%0*u", padding_, frame);
    return prefix_ + digits + suffix_;
}

std::vector<unsigned> FramePattern::existingFrames() const {
    std::vector<unsigned> frames;
    if (!marked_) return frames;
    const size_t slash = prefix_.rfind('/');
    const std::string folder =
        slash == std::string::npos ? "." : (slash == 0 ? "/" : prefix_.substr(0, slash));
    const std::string head = slash == std::string::npos ? prefix_ : prefix_.substr(slash + 1);
    DIR* dir = opendir(folder.c_str());
    if (!dir) return frames;
    while (const dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        unsigned frame = 0;
        // A half-written frame of this or another run is not a frame.
        if (!safeio::isTemporaryName(name) && frameOfName(name, &frame)) frames.push_back(frame);
    }
    closedir(dir);
    std::sort(frames.begin(), frames.end());
    return frames;
}

// The frame whose file name (without folder) is name: exactly what fileFor
// would make for it.
std::string FramePattern::head() const { return baseOf(prefix_); }

bool FramePattern::frameOfName(const std::string& name, unsigned* frame) const {
    const std::string head = this->head();
    if (name.size() <= head.size() + suffix_.size()) return false;
    if (name.compare(0, head.size(), head) != 0) return false;
    if (name.compare(name.size() - suffix_.size(), suffix_.size(), suffix_) != 0) return false;
    const std::string digits = name.substr(head.size(), name.size() - head.size() - suffix_.size());
    return parseFrame(digits, frame) && fileFor(*frame) == prefix_ + digits + suffix_;
}

bool FramePattern::holds(const std::string& path, unsigned* frame) const {
    const std::string given = namedPath(path);
    unsigned found = 0;
    if (!marked_) {
        if (given != namedPath(prefix_)) return false;
    } else {
        // The folders resolved, so that "." and "dir/" compare alike.
        if (folderOf(given) != folderOf(namedPath(fileFor(0))) ||
            !frameOfName(baseOf(given), &found))
            return false;
    }
    if (frame) *frame = found;
    return true;
}

bool FramePattern::sharesFile(const FramePattern& other, unsigned first, unsigned last,
                              unsigned* frame) const {
    auto inRange = [first, last](unsigned f) { return f >= first && f <= last; };
    unsigned found = first;  // a name without a mark is every frame's
    bool shared = false;
    if (!other.marked_) {
        shared = holds(other.prefix_, &found) && (!marked_ || inRange(found));
        if (!marked_) found = first;
    } else if (!marked_) {
        unsigned theirs = 0;
        shared = other.holds(prefix_, &theirs) && inRange(theirs);
    } else if (folderOf(namedPath(fileFor(0))) == folderOf(namedPath(other.fileFor(0))) &&
               sharesName(other, &found)) {
        // Some frames share a name; whether frames of the range do is tried
        // frame by frame (a range holds at most a million frames).
        shared = last - first >= kMaxFrameCount;
        for (unsigned theirs = first; !shared; ++theirs) {
            shared = frameOfName(baseOf(other.fileFor(theirs)), &found) && inRange(found);
            if (theirs == last) break;
        }
    }
    if (shared && frame) *frame = found;
    return shared;
}

// A file name both marked patterns make, at any frames. Each pair of digit
// counts is tried with the digits that neither pattern's text fixes made as
// small as a frame number allows (a frame wider than its padding starts
// with 1 or more), so that no other choice could fit where this one fails.
bool FramePattern::sharesName(const FramePattern& other, unsigned* frame) const {
    const std::string ourHead = head();
    const std::string theirHead = other.head();
    for (int ours = std::max(padding_, 1); ours <= kMaxPadding; ++ours) {
        const size_t size = ourHead.size() + ours + suffix_.size();
        const size_t theirText = theirHead.size() + other.suffix_.size();
        const int theirs = static_cast<int>(size) - static_cast<int>(theirText);
        if (theirs < std::max(other.padding_, 1) || theirs > kMaxPadding) continue;
        std::string name(size, '\0');  // '\0': a digit neither text fixes
        bool fits = true;
        auto place = [&name, &fits](const std::string& text, size_t at) {
            for (size_t i = 0; i < text.size(); ++i) {
                fits = fits && (!name[at + i] || name[at + i] == text[i]);
                name[at + i] = text[i];
            }
        };
        place(ourHead, 0);
        place(suffix_, size - suffix_.size());
        place(theirHead, 0);
        place(other.suffix_, size - other.suffix_.size());
        if (!fits) continue;
        for (size_t i = 0; i < size; ++i) {
            const bool leads = (i == ourHead.size() && ours > std::max(padding_, 1)) ||
                               (i == theirHead.size() && theirs > std::max(other.padding_, 1));
            if (!name[i]) name[i] = leads ? '1' : '0';
        }
        unsigned theirFrame = 0;
        if (frameOfName(name, frame) && other.frameOfName(name, &theirFrame)) return true;
    }
    return false;
}

bool parseFrameRange(const std::string& text, std::vector<unsigned>* frames, std::string* error) {
    const size_t dash = text.find('-');
    unsigned first = 0;
    unsigned last = 0;
    bool fine = dash == std::string::npos ? parseFrame(text, &first) && (last = first, true)
                                          : parseFrame(text.substr(0, dash), &first) &&
                                                parseFrame(text.substr(dash + 1), &last);
    if (!fine || first > last) {
        *error = "bad frame range \"" + text + "\": use A-B with 0 <= A <= B, or one frame";
        return false;
    }
    if (last - first >= kMaxFrameCount) {
        *error = "frame range \"" + text + "\" holds more than " + std::to_string(kMaxFrameCount) +
                 " frames";
        return false;
    }
    frames->clear();
    for (unsigned frame = first;; ++frame) {
        frames->push_back(frame);
        if (frame == last) break;
    }
    return true;
}
