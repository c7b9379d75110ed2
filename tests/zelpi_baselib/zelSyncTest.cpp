// The runtime's synchronisation calls: mutexes tried and released (failures
// logged, null tolerated), counting semaphores, blocks from the tracked heap,
// and condition waits with absolute deadlines.
#include <errno.h>
#include <gtest/gtest.h>
#include <semaphore.h>

#include <atomic>
#include <future>
#include <thread>

#include "LogCapture.h"
#include "zelThreads.h"
#include "zel_heap.h"

namespace {

// Runs fn on another thread and returns its result.
template <class Fn>
auto elsewhere(Fn fn) {
    return std::async(std::launch::async, fn).get();
}

TEST(ZelSync, TestMutexTakesOnlyAFreeMutex) {
    void* plain = zelmp_new_mutex(0);
    ASSERT_NE(plain, nullptr);
    EXPECT_TRUE(zelmp_test_mutex(plain));
    EXPECT_FALSE(zelmp_test_mutex(plain)) << "not recursive: held by this thread";
    EXPECT_FALSE(elsewhere([&] { return zelmp_test_mutex(plain); }));
    zelmp_release_mutex(plain);
    EXPECT_TRUE(elsewhere([&] {
        const bool taken = zelmp_test_mutex(plain);
        zelmp_release_mutex(plain);
        return taken;
    }));
    EXPECT_TRUE(zelmp_get_mutex(plain));
    EXPECT_FALSE(zelmp_get_mutex(plain)) << "taking it twice fails instead of hanging";
    zelmp_release_mutex(plain);
    zelmp_delete_mutex(plain);

    void* recursive = zelmp_new_mutex(1);
    ASSERT_NE(recursive, nullptr);
    EXPECT_TRUE(zelmp_test_mutex(recursive));
    EXPECT_TRUE(zelmp_test_mutex(recursive));
    zelmp_release_mutex(recursive);
    EXPECT_FALSE(elsewhere([&] { return zelmp_test_mutex(recursive); })) << "still held once";
    zelmp_release_mutex(recursive);
    EXPECT_TRUE(elsewhere([&] {
        const bool taken = zelmp_test_mutex(recursive);
        zelmp_release_mutex(recursive);
        return taken;
    }));
    zelmp_delete_mutex(recursive);
}

TEST(ZelSync, FailingReleaseIsLoggedAndNullIsTolerated) {
    LogCapture log;
    void* mutex = zelmp_new_mutex(0);
    zelmp_release_mutex(mutex);
    EXPECT_EQ(log.take(), "(ZEL LIB) HH:MM:SS.ss ERROR: THREAD: mutex lock errors...\n");
    zelmp_get_mutex(mutex);
    elsewhere([&] {
        zelmp_release_mutex(mutex);
        return 0;
    });
    EXPECT_EQ(log.take(), "(ZEL LIB) HH:MM:SS.ss ERROR: THREAD: mutex lock errors...\n")
        << "released by a thread that does not hold it";
    zelmp_release_mutex(mutex);
    zelmp_delete_mutex(mutex);

    EXPECT_FALSE(zelmp_get_mutex(nullptr));
    EXPECT_FALSE(zelmp_test_mutex(nullptr));
    zelmp_delete_mutex(nullptr);
    EXPECT_EQ(zelmp_wait_sema(nullptr), -1);
    EXPECT_EQ(zelmp_test_sema(nullptr), -1);
    EXPECT_EQ(zelmp_post_sema(nullptr), -1);
    zelmp_delete_sema(nullptr);
    EXPECT_EQ(zelmp_cond_signal(nullptr), EINVAL);
    EXPECT_EQ(zelmp_cond_wait(nullptr, nullptr), EINVAL);
    zelmp_delete_cond_block(nullptr);
}

TEST(ZelSync, SemaphoresCountAndBlock) {
    EXPECT_EQ(zelmp_new_sema(-1), nullptr);

    void* sema = zelmp_new_sema(2);
    ASSERT_NE(sema, nullptr);
    EXPECT_EQ(zelmp_test_sema(sema), 1);
    EXPECT_EQ(zelmp_test_sema(sema), 1);
    EXPECT_EQ(zelmp_test_sema(sema), 0) << "empty: would block";
    EXPECT_EQ(zelmp_post_sema(sema), 1);
    EXPECT_EQ(zelmp_test_sema(sema), 1);

    std::atomic<bool> passed{false};
    std::thread waiter([&] {
        EXPECT_EQ(zelmp_wait_sema(sema), 1);
        passed = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(passed) << "waits while empty";
    zelmp_post_sema(sema);
    waiter.join();
    EXPECT_TRUE(passed);
    zelmp_delete_sema(sema);
}

TEST(ZelSync, BlocksComeFromTheTrackedHeap) {
    set_zel_heap_memory_enable(true);
    set_zel_heap_memory_debug(true);
    int blocksBefore = 0;
    long bytesBefore = 0;
    get_zel_heap_normal_memory_statistics(&blocksBefore, nullptr, &bytesBefore, nullptr);
    void* sema = zelmp_new_sema(0);
    void* cond = zelmp_new_cond_block();
    int blocks = 0;
    long bytes = 0;
    get_zel_heap_normal_memory_statistics(&blocks, nullptr, &bytes, nullptr);
    EXPECT_EQ(blocks, blocksBefore + 2);
    EXPECT_EQ(bytes, bytesBefore + static_cast<long>(sizeof(sem_t) + sizeof(pthread_cond_t)));
    zelmp_delete_sema(sema);
    zelmp_delete_cond_block(cond);
    get_zel_heap_normal_memory_statistics(&blocks, nullptr, &bytes, nullptr);
    EXPECT_EQ(blocks, blocksBefore);
    EXPECT_EQ(bytes, bytesBefore);
    set_zel_heap_memory_debug(false);
    set_zel_heap_memory_enable(false);
}

TEST(ZelSync, ConditionWaitsForItsSignal) {
    void* mutex = zelmp_new_mutex(0);
    void* cond = zelmp_new_cond_block();
    ASSERT_NE(cond, nullptr);
    bool ready = false;
    std::thread signaller([&] {
        zelmp_get_mutex(mutex);
        ready = true;
        zelmp_cond_signal(cond);
        zelmp_release_mutex(mutex);
    });
    zelmp_get_mutex(mutex);
    while (!ready) EXPECT_EQ(zelmp_cond_wait(cond, mutex), 0);
    zelmp_release_mutex(mutex);
    signaller.join();

    // The deadline is absolute: 1.5 s after the epoch has long passed.
    LogCapture log;
    zelmp_get_mutex(mutex);
    EXPECT_EQ(zelmp_cond_timedwait(cond, mutex, 1500000000), ETIMEDOUT);
    EXPECT_EQ(log.take(), "");
    // A negative count gives a negative nanosecond field, which POSIX refuses.
    EXPECT_EQ(zelmp_cond_timedwait(cond, mutex, -1), EINVAL);
    EXPECT_EQ(log.take(),
              "(ZEL LIB) HH:MM:SS.ss ERROR: ERROR: Video frame timer error: 'Invalid argument'\n");
    zelmp_release_mutex(mutex);
    zelmp_delete_cond_block(cond);
    zelmp_delete_mutex(mutex);
}

}  // namespace
