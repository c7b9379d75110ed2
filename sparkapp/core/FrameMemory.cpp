// Estimating a frame's memory and finding what the process may take.
#include "FrameMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {
const uint64_t kUnknown = UINT64_MAX;
const uint64_t kKibi = 1024;
const uint64_t kNoCgroupLimit = 1ull << 60;  // cgroups write "unlimited" as a huge number
const int kRgb = 3;
const int kHostBytes8 = 3;
const int kHostBytes12 = 6;
const int kPluginImages = 3;       // input, output, scratch
const int kPluginPixelBytes = 8;   // four 16-bit channels
const int kAddressMapBytes = 8;    // two floats
const int kOutputSampleBytes = 4;  // float, the widest
const int kOutputCopies = 2;       // the samples and the writer's copy
// The host's input and output, and the frame loop's: two read ahead and the
// one being exchanged, two being written and the one being exchanged.
const int kHostFrames = 8;
const int kDecodedCopies = 3;  // reader process, tool, the frame it replaces

// The number after `key` in a "key value" text file, or kUnknown.
uint64_t fieldOf(const std::string& path, const std::string& key) {
    std::ifstream in(path);
    std::string name;
    uint64_t value = 0;
    while (in >> name >> value) {
        if (name == key) return value;
        in.ignore(1 << 16, '\n');
    }
    return kUnknown;
}

uint64_t numberIn(const std::string& path) {
    std::ifstream in(path);
    std::string text;
    if (!(in >> text) || text.empty() || !std::isdigit(static_cast<unsigned char>(text[0])))
        return kUnknown;  // missing, or "max"
    return std::strtoull(text.c_str(), nullptr, 10);
}

// The cgroup path of this process for a hierarchy ("" for version 2,
// "memory" for version 1), from /proc/self/cgroup.
std::string cgroupPath(const std::string& controller) {
    std::ifstream in("/proc/self/cgroup");
    std::string line;
    while (std::getline(in, line)) {
        const size_t first = line.find(':');
        const size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        std::stringstream list(controllers);
        std::string one;
        bool match = controllers == controller;
        while (!match && std::getline(list, one, ',')) match = one == controller;
        if (match) return line.substr(second + 1);
    }
    return "";
}

// Room under a control-group limit: limit - (usage - reclaimable file cache).
uint64_t cgroupRoom(const std::string& folder, const char* limitName, const char* usageName,
                    const char* cacheKey) {
    const uint64_t limit = numberIn(folder + "/" + limitName);
    const uint64_t usage = numberIn(folder + "/" + usageName);
    if (limit == kUnknown || usage == kUnknown || limit >= kNoCgroupLimit) return kUnknown;
    uint64_t cache = fieldOf(folder + "/memory.stat", cacheKey);
    if (cache == kUnknown || cache > usage) cache = 0;
    const uint64_t used = usage - cache;
    return limit > used ? limit - used : 0;
}

uint64_t cgroupAvailable() {
    uint64_t room = kUnknown;
    const std::string v2 = cgroupPath("");
    for (const std::string& folder : {"/sys/fs/cgroup" + v2, std::string("/sys/fs/cgroup")})
        room = std::min(room, cgroupRoom(folder, "memory.max", "memory.current", "inactive_file"));
    const std::string v1 = cgroupPath("memory");
    for (const std::string& folder :
         {"/sys/fs/cgroup/memory" + v1, std::string("/sys/fs/cgroup/memory")})
        room = std::min(room, cgroupRoom(folder, "memory.limit_in_bytes", "memory.usage_in_bytes",
                                         "total_inactive_file"));
    return room;
}

// Room under a resource limit, given the pages already counted against it.
uint64_t limitRoom(int resource, uint64_t usedBytes) {
    struct rlimit limit;
    if (getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kUnknown;
    const uint64_t cap = static_cast<uint64_t>(limit.rlim_cur);
    return cap > usedBytes ? cap - usedBytes : 0;
}

uint64_t rlimitAvailable() {
    // /proc/self/statm: total pages, resident, shared, text, library, data (+ stack), dirty.
    std::ifstream in("/proc/self/statm");
    uint64_t total = 0, resident = 0, shared = 0, text = 0, library = 0, data = 0;
    if (!(in >> total >> resident >> shared >> text >> library >> data)) return kUnknown;
    const uint64_t page = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    return std::min(limitRoom(RLIMIT_AS, total * page), limitRoom(RLIMIT_DATA, data * page));
}
}  // namespace

uint64_t frameMemoryNeed(const FrameShape& shape, bool withPlugin) {
    const uint64_t pixels = static_cast<uint64_t>(std::max(shape.width, 0)) *
                            static_cast<uint64_t>(std::max(shape.height, 0));
    const uint64_t decoded = kRgb * (shape.isFloat ? sizeof(float) : sizeof(uint16_t));
    uint64_t perPixel = static_cast<uint64_t>(std::max(shape.fileChannels, 1)) *
                            static_cast<uint64_t>(std::max(shape.fileSampleBytes, 1)) +
                        kDecodedCopies * decoded;
    if (withPlugin) {
        const int host = shape.hostDepth == 48 ? kHostBytes12 : kHostBytes8;
        perPixel += kHostFrames * host + kPluginImages * kPluginPixelBytes + kAddressMapBytes +
                    kOutputCopies * kRgb * kOutputSampleBytes;
    }
    return pixels * perPixel;
}

uint64_t memoryAvailable() {
    const uint64_t kernel = fieldOf("/proc/meminfo", "MemAvailable:");
    uint64_t room = kernel == kUnknown ? kUnknown : kernel * kKibi;
    room = std::min(room, cgroupAvailable());
    room = std::min(room, rlimitAvailable());
    return room;
}

uint64_t peakMemory() {
    struct rusage usage;
    if (getrusage(RUSAGE_SELF, &usage) != 0) return 0;
    return static_cast<uint64_t>(usage.ru_maxrss) * kKibi;  // Linux counts in KiB
}

bool parseMemorySize(const std::string& text, uint64_t* bytes) {
    size_t digits = 0;
    while (digits < text.size() &&
           (std::isdigit(static_cast<unsigned char>(text[digits])) || text[digits] == '.'))
        ++digits;
    const std::string figure = text.substr(0, digits);
    char* end = nullptr;
    const double number = figure.empty() ? 0.0 : std::strtod(figure.c_str(), &end);
    if (figure.empty() || !end || *end) return false;
    std::string unit = text.substr(digits);
    for (char& c : unit) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (unit.size() == 3 && unit.compare(1, 2, "IB") == 0)
        unit.erase(1);
    else if (unit.size() == 2 && unit.back() == 'B')
        unit.pop_back();
    double scale = 1.0;
    if (unit == "K") {
        scale = 1024.0;
    } else if (unit == "M") {
        scale = 1024.0 * 1024.0;
    } else if (unit == "G") {
        scale = 1024.0 * 1024.0 * 1024.0;
    } else if (unit == "T") {
        scale = 1024.0 * 1024.0 * 1024.0 * 1024.0;
    } else if (!unit.empty() && unit != "B") {
        return false;
    }
    const double value = number * scale;
    // Below 2^63, so the conversion is exact enough and cannot overflow.
    if (!std::isfinite(value) || value < 1.0 || value >= 9.2e18) return false;
    *bytes = static_cast<uint64_t>(value);
    return true;
}

std::string memoryText(uint64_t bytes) {
    const char* units[] = {"KiB", "MiB", "GiB", "TiB"};
    if (bytes < kKibi) return std::to_string(bytes) + " bytes";
    double value = static_cast<double>(bytes) / kKibi;
    int unit = 0;
    while (value >= 1024.0 && unit < 3) {
        value /= 1024.0;
        ++unit;
    }
    char text[48];
    std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
    return text;
}
