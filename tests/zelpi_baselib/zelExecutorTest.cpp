// The runtime's executor: each worker gets its rows on its own thread, every
// row once at any worker count, the processor count set once, a worker that
// cannot start leaves its rows to the caller, and runs from several threads
// or from inside a worker.
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "LogCapture.h"
#include "zelThreads.h"
#include "zelThreadsTesting.h"

namespace {

struct Share {
    int worker;
    int first;
    int last;
    pthread_t thread;
};

// Every call of a band worker, and how often each row was visited.
struct Calls {
    explicit Calls(int rows) : hits(rows) {}
    std::mutex lock;
    std::vector<Share> shares;
    std::vector<std::atomic<int>> hits;

    std::vector<Share> byWorker() {
        std::vector<Share> sorted = shares;
        std::sort(sorted.begin(), sorted.end(),
                  [](const Share& a, const Share& b) { return a.worker < b.worker; });
        return sorted;
    }
    bool eachRowOnce() const {
        return std::all_of(hits.begin(), hits.end(),
                           [](const std::atomic<int>& h) { return h == 1; });
    }
};

void recordShare(void* arg, int first, int last) {
    auto* calls = static_cast<Calls*>(arg);
    for (int row = first; row <= last; ++row) ++calls->hits[row];
    std::lock_guard<std::mutex> hold(calls->lock);
    calls->shares.push_back({zelmp_id(), first, last, pthread_self()});
}

class Executor : public ::testing::Test {
  protected:
    Executor() { zelmp_reset_nprocs_for_tests(); }
    ~Executor() override {
        zelmp_set_thread_creator_for_tests(nullptr);
        zelmp_reset_nprocs_for_tests();
    }
};

TEST_F(Executor, LibExecGivesEachWorkerItsRowsOnItsOwnThread) {
    LogCapture log;
    zelmp_set_nprocs(4);
    EXPECT_NE(log.take().find(": Simulating 4-way multi-processing\n"), std::string::npos);

    Calls ten(10);
    zelmp_lib_mp_exec(nullptr, recordShare, 10, &ten);
    std::vector<Share> shares = ten.byWorker();
    ASSERT_EQ(shares.size(), 4u);
    const int expected[4][2] = {{0, 1}, {2, 3}, {4, 5}, {6, 9}};
    for (int w = 0; w < 4; ++w) {
        EXPECT_EQ(shares[w].worker, w);
        EXPECT_EQ(shares[w].first, expected[w][0]) << "worker " << w;
        EXPECT_EQ(shares[w].last, expected[w][1]) << "worker " << w;
        EXPECT_FALSE(pthread_equal(shares[w].thread, pthread_self()));
        for (int other = 0; other < w; ++other)
            EXPECT_FALSE(pthread_equal(shares[w].thread, shares[other].thread));
    }
    EXPECT_TRUE(ten.eachRowOnce());

    // Three rows over four: one row each and nothing for the last worker.
    Calls three(3);
    zelmp_lib_mp_exec(nullptr, recordShare, 3, &three);
    shares = three.byWorker();
    ASSERT_EQ(shares.size(), 4u);
    const int expectedThree[4][2] = {{0, 0}, {1, 1}, {2, 2}, {3, 2}};
    for (int w = 0; w < 4; ++w) {
        EXPECT_EQ(shares[w].first, expectedThree[w][0]) << "worker " << w;
        EXPECT_EQ(shares[w].last, expectedThree[w][1]) << "worker " << w;
    }
    EXPECT_EQ(zelmp_id(), 0);
}

TEST_F(Executor, EveryRowIsVisitedOnceAtAnyWorkerCount) {
    for (int workers : {2, 3, 4, 5, 8}) {
        zelmp_reset_nprocs_for_tests();
        zelmp_set_nprocs(workers);
        for (int total : {0, 1, 2, 3, 7, 10, 31, 100, 1001}) {
            Calls calls(total);
            zelmp_lib_mp_exec(nullptr, recordShare, total, &calls);
            EXPECT_EQ(calls.shares.size(), static_cast<size_t>(workers));
            EXPECT_TRUE(calls.eachRowOnce()) << total << " rows over " << workers;
        }
    }
}

struct Spans {
    std::mutex lock;
    std::vector<std::pair<int, int>> byWorker = std::vector<std::pair<int, int>>(4, {-1, -1});
};

void recordSpan(intptr_t spans, intptr_t start, intptr_t end, intptr_t, intptr_t, intptr_t) {
    int lo = 0;
    int hi = 0;
    zelmp_find_band(static_cast<int>(start), static_cast<int>(end), lo, hi);
    auto* s = reinterpret_cast<Spans*>(spans);
    std::lock_guard<std::mutex> hold(s->lock);
    s->byWorker[zelmp_id()] = {lo, hi};
}

TEST_F(Executor, FindBandGivesEachWorkerItsSpan) {
    zelmp_set_nprocs(4);
    Spans spans;
    zelmp_exec(recordSpan, reinterpret_cast<intptr_t>(&spans), 10, 20);
    // Bands of 10 / 4 = 2.5 -> 2, measured from 0 rather than from 10.
    std::vector<std::pair<int, int>> expected = {{0, 2}, {2, 4}, {4, 6}, {6, 20}};
    EXPECT_EQ(spans.byWorker, expected);

    // Outside a run the caller counts as worker 0.
    int lo = -1;
    int hi = -1;
    zelmp_find_band(10, 20, lo, hi);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 2);
}

TEST_F(Executor, CountOfOneRunsInTheCallingThread) {
    zelmp_set_nprocs(1);
    Calls calls(10);
    zelmp_lib_mp_exec(nullptr, recordShare, 10, &calls);
    ASSERT_EQ(calls.shares.size(), 1u);
    EXPECT_TRUE(pthread_equal(calls.shares[0].thread, pthread_self()));
    EXPECT_EQ(calls.shares[0].worker, 0);
    EXPECT_EQ(calls.shares[0].first, 0);
    EXPECT_EQ(calls.shares[0].last, 9);
}

TEST_F(Executor, ProcessorCountIsSetOnceOnly) {
    LogCapture log;
    const int cpus = zelmp_get_raw_cpu_count();
    EXPECT_EQ(zelmp_get_nprocs(), cpus);

    // A run with the count unset takes the CPU count; setting it afterwards only warns.
    Calls calls(6);
    zelmp_lib_mp_exec(nullptr, recordShare, 6, &calls);
    EXPECT_EQ(calls.shares.size(), static_cast<size_t>(cpus));
    EXPECT_TRUE(calls.eachRowOnce());
    log.take();
    zelmp_set_nprocs(cpus + 3);
    EXPECT_EQ(log.take(), "(ZEL LIB) HH:MM:SS.ss WARN : " + std::to_string(cpus) +
                              "-way Multi-processing already setup. (Can't change it)\n");
    EXPECT_EQ(zelmp_get_nprocs(), cpus);

    // Set explicitly, the first value stays.
    zelmp_reset_nprocs_for_tests();
    zelmp_set_nprocs(3);
    zelmp_set_nprocs(5);
    EXPECT_NE(log.take().find("WARN : 3-way Multi-processing already setup. (Can't change it)\n"),
              std::string::npos);
    EXPECT_EQ(zelmp_get_nprocs(), 3);
}

std::atomic<int> g_creations{0};

int failThirdCreation(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                      void* arg) {
    if (++g_creations == 3) return EAGAIN;
    return pthread_create(thread, attributes, fn, arg);
}

TEST_F(Executor, WorkerThatCannotStartLeavesTheRunToTheCaller) {
    zelmp_set_nprocs(4);
    g_creations = 0;
    zelmp_set_thread_creator_for_tests(failThirdCreation);
    LogCapture log;
    Calls calls(10);
    zelmp_lib_mp_exec(nullptr, recordShare, 10, &calls);
    EXPECT_EQ(log.take(), "(ZEL LIB) HH:MM:SS.ss ERROR: Can't create MP thread: 2\n");

    // Workers 0 and 1 may have done their rows before they were cancelled; the
    // caller then did all of them.
    const auto caller = std::find_if(calls.shares.begin(), calls.shares.end(), [](const Share& s) {
        return pthread_equal(s.thread, pthread_self());
    });
    ASSERT_NE(caller, calls.shares.end());
    EXPECT_EQ(caller->first, 0);
    EXPECT_EQ(caller->last, 9);
    for (int row = 4; row < 10; ++row) EXPECT_EQ(calls.hits[row], 1) << "row " << row;

    // The count is 1 for good: later runs stay in the caller.
    EXPECT_EQ(zelmp_get_nprocs(), 1);
    zelmp_set_nprocs(4);
    EXPECT_EQ(
        log.take(),
        "(ZEL LIB) HH:MM:SS.ss WARN : 1-way Multi-processing already setup. (Can't change it)\n");
    Calls later(10);
    zelmp_lib_mp_exec(nullptr, recordShare, 10, &later);
    ASSERT_EQ(later.shares.size(), 1u);
    EXPECT_TRUE(pthread_equal(later.shares[0].thread, pthread_self()));
    EXPECT_TRUE(later.eachRowOnce());
}

struct Overlap {
    std::atomic<int> active{0};
    std::atomic<int> most{0};
};

void busyWorker(void* arg, int, int) {
    auto* overlap = static_cast<Overlap*>(arg);
    const int now = ++overlap->active;
    int most = overlap->most;
    while (now > most && !overlap->most.compare_exchange_weak(most, now)) {
    }
    usleep(500);
    --overlap->active;
}

TEST_F(Executor, RunsFromTwoThreadsTakeTurns) {
    zelmp_set_nprocs(2);
    Overlap overlap;
    auto runs = [&overlap] {
        for (int i = 0; i < 40; ++i) zelmp_lib_mp_exec(nullptr, busyWorker, 100, &overlap);
    };
    std::thread a(runs);
    std::thread b(runs);
    a.join();
    b.join();
    EXPECT_LE(overlap.most, 2);
}

struct Nested {
    std::mutex lock;
    std::vector<Share> inner;
};

void innerShare(void* arg, int first, int last) {
    auto* nested = static_cast<Nested*>(arg);
    std::lock_guard<std::mutex> hold(nested->lock);
    nested->inner.push_back({zelmp_id(), first, last, pthread_self()});
}

void outerWorker(void* arg, int, int) { zelmp_lib_mp_exec(nullptr, innerShare, 7, arg); }

TEST_F(Executor, RunStartedInsideAWorkerRunsInThatWorker) {
    zelmp_set_nprocs(3);
    Nested nested;
    zelmp_lib_mp_exec(nullptr, outerWorker, 30, &nested);
    ASSERT_EQ(nested.inner.size(), 3u);
    for (const Share& s : nested.inner) {
        EXPECT_EQ(s.worker, 0);
        EXPECT_EQ(s.first, 0);
        EXPECT_EQ(s.last, 6);
    }
}

}  // namespace
