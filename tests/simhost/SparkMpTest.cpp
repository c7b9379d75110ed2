// sparkMpFork runs one worker per processor on its own thread.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "SimHost.h"

using simhost::Host;

namespace {
struct Seen {
    std::mutex lock;
    std::set<std::thread::id> threads;
    std::vector<int> infoIndices;
    std::vector<int> workerIndices;
    std::vector<long> sums;
};

// A worker as a plug-in writes one: pointer arguments, its share from sparkMpInfo.
void worker(void* seenArg, void* aArg, void* bArg) {
    auto* seen = static_cast<Seen*>(seenArg);
    unsigned long offset = 0, length = 0;
    sparkMpInfo(&offset, &length);
    std::lock_guard<std::mutex> hold(seen->lock);
    seen->threads.insert(std::this_thread::get_id());
    seen->infoIndices.push_back(length ? static_cast<int>(offset / length) : -100);
    seen->workerIndices.push_back(Host::workerIndex());
    seen->sums.push_back(*static_cast<long*>(aArg) + *static_cast<long*>(bArg));
}

std::atomic<int> bareCalls{0};
void bareWorker() { ++bareCalls; }
}  // namespace

// Worker 0 runs on the calling thread, the others on threads of their own.
TEST(SimHostMp, ForkRunsEveryWorkerWithItsIndexTheFirstOnTheCaller) {
    Host& host = Host::instance();
    host.reset();
    host.processors = 3;
    Seen seen;
    long a = 40, b = 2;
    sparkMpFork(reinterpret_cast<void (*)()>(worker), 3, &seen, &a, &b);

    EXPECT_EQ(seen.threads.size(), 3u);
    EXPECT_EQ(seen.threads.count(std::this_thread::get_id()), 1u);
    EXPECT_EQ(std::multiset<int>(seen.infoIndices.begin(), seen.infoIndices.end()),
              (std::multiset<int>{0, 1, 2}));
    EXPECT_EQ(std::multiset<int>(seen.workerIndices.begin(), seen.workerIndices.end()),
              (std::multiset<int>{0, 1, 2}));
    EXPECT_EQ(seen.sums, (std::vector<long>{42, 42, 42}));
    EXPECT_EQ(Host::workerIndex(), -1);
    EXPECT_EQ(host.count("sparkMpFork"), 1);  // the fork once, not per worker
    EXPECT_TRUE(host.called("sparkMpFork(3)"));
    EXPECT_EQ(host.count("sparkMpInfo"), 3);

    // No processors still runs one worker; no arguments at all is fine too.
    host.processors = 0;
    bareCalls = 0;
    sparkMpFork(bareWorker, 0);
    EXPECT_EQ(bareCalls.load(), 1);
}
