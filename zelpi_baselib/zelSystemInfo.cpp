#include "zelSystemInfo.h"

#include <pwd.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "zelExecutor.h"
#include "zelMessageLog.h"

namespace {

constexpr double kBytesPerMByte = 1024.0 * 1024.0;
constexpr size_t kPasswordBufferBytes = 16384;

}  // namespace

int zelmp_get_raw_cpu_count() { return std::max(1, get_nprocs()); }

int zelmp_get_pagesize() { return static_cast<int>(sysconf(_SC_PAGESIZE)); }

std::string zelmp_username() {
    std::vector<char> buffer(kPasswordBufferBytes);
    struct passwd entry;
    struct passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found &&
        found->pw_name)
        return found->pw_name;
    return "unknown";
}

std::string zelmp_machinename() {
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0) return "unknown";
    return name;
}

bool zelmp_get_meminfo(double& totalMBytes, double& freeMBytes) {
    totalMBytes = 0.0;
    freeMBytes = 0.0;
    struct sysinfo info;
    if (sysinfo(&info) != 0) {
        zel_notify(kZelLevelError, "MP MEMORY ERROR: sysinfo failed\n");
        return false;
    }
    const double unit = info.mem_unit ? info.mem_unit : 1;
    totalMBytes = static_cast<double>(info.totalram) * unit / kBytesPerMByte;
    freeMBytes = static_cast<double>(info.freeram) * unit / kBytesPerMByte;
    return true;
}

double zelmp_memfree() {
    double total = 0.0;
    double free = 0.0;
    zelmp_get_meminfo(total, free);
    return free;
}

void zelmp_get_sysinfo() {
    zel_msg("Processors: %d (%d online)", zelmp_get_nprocs(), zelmp_get_raw_cpu_count());
    zel_msg("Page size: %d bytes", zelmp_get_pagesize());
    zel_msg("User: %s", zelmp_username().c_str());
    zel_msg("Machine: %s", zelmp_machinename().c_str());
    double total = 0.0;
    double free = 0.0;
    if (!zelmp_get_meminfo(total, free)) return;
    zel_msg("Physical memory: %8.2f MBytes total", total);
    zel_msg("                 : %8.2f MBytes free", free);
}
