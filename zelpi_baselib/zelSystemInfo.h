// Questions about the machine and the user running the process. Memory is in
// MBytes (2^20 bytes), the page size in bytes. A failed `sysinfo` logs
// "MP MEMORY ERROR: sysinfo failed".
#pragma once

#include <string>

// Processors online, at least 1.
int zelmp_get_raw_cpu_count();
int zelmp_get_pagesize();
// The effective user's login name ("unknown" when there is none) and the host name.
std::string zelmp_username();
std::string zelmp_machinename();

// Physical memory in all and free now; false (both 0) when it cannot be read.
bool zelmp_get_meminfo(double& totalMBytes, double& freeMBytes);
// Free physical memory; 0 when it cannot be read.
double zelmp_memfree();
// Logs the processors, page size, user, machine and physical memory.
void zelmp_get_sysinfo();
