// The program's defaults.
#include "ProgramDefaults.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <thread>

const char kDefaultPlugin[] = "straightlux.spark";

std::string defaultPluginPath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) return kDefaultPlugin;
    std::string self(path, static_cast<size_t>(length));
    const size_t slash = self.rfind('/');
    return (slash == std::string::npos ? std::string(".") : self.substr(0, slash)) + "/" +
           kDefaultPlugin;
}

int defaultProcessors() {
    const int count = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(count, 1, kMaxProcessors);
}
