// The runtime's machine queries (processors, page size, names, memory and
// its log lines) and the scheduling classes, which act on the calling thread
// only.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <regex>
#include <thread>

#include "LogCapture.h"
#include "zelThreads.h"

namespace {

TEST(ZelSystemInfo, MachineQueries) {
    EXPECT_EQ(zelmp_get_raw_cpu_count(), std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
    const int page = zelmp_get_pagesize();
    EXPECT_GE(page, 4096);
    EXPECT_EQ(page & (page - 1), 0) << "a power of two";
    struct utsname names;
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(zelmp_machinename(), names.nodename);
    EXPECT_FALSE(zelmp_username().empty());

    double total = 0.0;
    double free = 0.0;
    ASSERT_TRUE(zelmp_get_meminfo(total, free));
    EXPECT_GT(total, 0.0);
    EXPECT_GT(free, 0.0);
    EXPECT_LE(free, total);
    EXPECT_GT(zelmp_memfree(), 0.0);
    EXPECT_LE(zelmp_memfree(), total);

    LogCapture log;
    zelmp_get_sysinfo();
    const std::string text = log.take();
    const std::string blanks18(18, ' ');
    const std::regex memory("\\(ZEL LIB\\)" + blanks18 +
                            ": Physical memory: [ 0-9]{5,}\\.\\d\\d MBytes total\n"
                            "\\(ZEL LIB\\)" +
                            blanks18 + ": " + std::string(17, ' ') +
                            ": [ 0-9]{5,}\\.\\d\\d MBytes free\n$");
    EXPECT_TRUE(std::regex_search(text, memory)) << text;
}

int niceOfThisThread() { return getpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid))); }

TEST(ZelSystemInfo, SchedulingClassesActOnTheCallingThread) {
    LogCapture log;
    zelmp_scheduler_setup();
    EXPECT_TRUE(
        std::regex_search(log.take(), std::regex("INFO : ZEL MP Version [0-9.]+ \\(.+\\)\n")));
    const int normal = niceOfThisThread();
    std::thread worker([normal] {
        EXPECT_EQ(zelmp_schedule_low(), 0);
        // Nice values stop at 19, so a test run already niced ends there.
        EXPECT_EQ(niceOfThisThread(), std::min(normal + 10, 19));
        // Going back up needs the privilege to raise priority.
        if (geteuid() == 0) {
            EXPECT_EQ(zelmp_schedule_normal(), 0);
            EXPECT_EQ(niceOfThisThread(), normal);
        }
    });
    worker.join();
    EXPECT_EQ(niceOfThisThread(), normal) << "other threads keep theirs";
    zelmp_yield();
}

}  // namespace
