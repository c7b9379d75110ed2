// The runtime's table of tracked threads: at most 32, entries dropped when a
// thread is killed or leaves, creation retried while resources are short,
// and closing cancels every tracked thread.
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "LogCapture.h"
#include "zelThreads.h"
#include "zelThreadsTesting.h"

namespace {

// Waits (for at most ten seconds, so that a fault fails rather than hangs) until done() holds.
template <class Condition>
bool eventually(Condition done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// A tracked thread that waits at a gate, then leaves the table and ends.
struct Gate {
    void* sema = zelmp_new_sema(0);
    ~Gate() { zelmp_delete_sema(sema); }
};

void* waitThenLeave(void* gate) {
    zelmp_wait_sema(static_cast<Gate*>(gate)->sema);
    zelmp_leaving_thread();
    return nullptr;
}

// A tracked thread that blocks until cancelled and says so as it unwinds.
struct Blocker {
    std::atomic<bool> unwound{false};
    void* never = zelmp_new_sema(0);
    ~Blocker() { zelmp_delete_sema(never); }
};

struct SetOnUnwind {
    std::atomic<bool>& flag;
    ~SetOnUnwind() { flag = true; }
};

void* blockUntilCancelled(void* data) {
    auto* blocker = static_cast<Blocker*>(data);
    SetOnUnwind mark{blocker->unwound};
    zelmp_wait_sema(blocker->never);
    return nullptr;
}

class ThreadTable : public ::testing::Test {
  protected:
    ~ThreadTable() override {
        zelmp_set_thread_creator_for_tests(nullptr);
        zel_notify_setlevel(kZelLevelInfo);
    }
};

TEST_F(ThreadTable, The33rdThreadIsRefused) {
    Gate gate;
    const int before = zelmp_thread_count();
    ASSERT_EQ(before, 0);
    std::vector<int> ids;
    for (int i = 0; i < 32; ++i) ids.push_back(zelmp_start_thread(waitThenLeave, &gate));
    EXPECT_GE(ids[0], 4096);
    for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(ids[i], ids[0] + i) << "ids rise one by one";
        EXPECT_TRUE(zelmp_thread_tracked(ids[i]));
    }
    EXPECT_EQ(zelmp_thread_count(), 32);

    LogCapture log;
    EXPECT_EQ(zelmp_start_thread(waitThenLeave, &gate), -1);
    EXPECT_EQ(log.take(),
              "(ZEL LIB) HH:MM:SS.ss ERROR: ERROR: Maximum number of thread's reached !!\n");
    EXPECT_EQ(zelmp_thread_count(), 32);

    for (int i = 0; i < 32; ++i) zelmp_post_sema(gate.sema);
    ASSERT_TRUE(eventually([] { return zelmp_thread_count() == 0; }));

    // Room again; the refused call used no id.
    const int next = zelmp_start_thread(waitThenLeave, &gate);
    EXPECT_EQ(next, ids[31] + 1);
    zelmp_post_sema(gate.sema);
    EXPECT_TRUE(eventually([] { return zelmp_thread_count() == 0; }));
}

TEST_F(ThreadTable, KillAndLeavingDropEntries) {
    Blocker blocker;
    Gate gate;
    const int blocked = zelmp_start_thread(blockUntilCancelled, &blocker);
    const int leaving = zelmp_start_thread(waitThenLeave, &gate);
    ASSERT_NE(blocked, -1);
    ASSERT_NE(leaving, -1);
    EXPECT_EQ(zelmp_thread_count(), 2);

    LogCapture log;
    zelmp_kill_thread(12345);  // unknown: ignored
    EXPECT_EQ(zelmp_thread_count(), 2);
    zelmp_kill_thread(blocked);
    EXPECT_FALSE(zelmp_thread_tracked(blocked));
    EXPECT_TRUE(zelmp_thread_tracked(leaving));
    EXPECT_EQ(zelmp_thread_count(), 1);
    EXPECT_TRUE(eventually([&] { return blocker.unwound.load(); })) << "the thread was cancelled";

    zelmp_post_sema(gate.sema);
    EXPECT_TRUE(eventually([] { return zelmp_thread_count() == 0; }));
    EXPECT_FALSE(zelmp_thread_tracked(leaving));
    EXPECT_EQ(log.take(), "");
}

std::atomic<int> g_creations{0};

int shortOfResourcesOnce(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                         void* arg) {
    if (++g_creations == 1) return EAGAIN;
    return pthread_create(thread, attributes, fn, arg);
}

int notPermitted(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*) { return EPERM; }

TEST_F(ThreadTable, CreationIsRetriedWhileResourcesAreShort) {
    LogCapture log;
    zel_notify_setlevel(kZelLevelTrace);
    Gate gate;
    g_creations = 0;
    zelmp_set_thread_creator_for_tests(shortOfResourcesOnce);
    const int id = zelmp_start_thread(waitThenLeave, &gate);
    ASSERT_NE(id, -1);
    const std::regex retried(R"(\(ZEL LIB\) HH:MM:SS\.ss TRACE: ==> EAGAIN condition! \(try=1\)\n)"
                             R"(\(ZEL LIB\) HH:MM:SS\.ss TRACE: Created thread id = )" +
                             std::to_string(id) + R"(, create_calls=\d+\n)");
    EXPECT_TRUE(std::regex_match(log.take(), retried));
    zelmp_post_sema(gate.sema);
    EXPECT_TRUE(eventually([] { return zelmp_thread_count() == 0; }));

    // Other failures are not retried and are logged at TRACE only.
    zelmp_set_thread_creator_for_tests(notPermitted);
    EXPECT_EQ(zelmp_start_thread(waitThenLeave, &gate), -1);
    const std::regex refused(R"(\(ZEL LIB\) HH:MM:SS\.ss TRACE: ERROR: Can't create thread: )" +
                             std::to_string(EPERM) + R"(, create_calls: \d+\n)");
    EXPECT_TRUE(std::regex_match(log.take(), refused));
    zel_notify_setlevel(kZelLevelInfo);
    EXPECT_EQ(zelmp_start_thread(waitThenLeave, &gate), -1);
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(zelmp_thread_count(), 0);
}

TEST_F(ThreadTable, CloseCancelsEveryTrackedThread) {
    Blocker first;
    Blocker second;
    const int a = zelmp_start_thread(blockUntilCancelled, &first);
    const int b = zelmp_start_thread(blockUntilCancelled, &second);
    ASSERT_NE(a, -1);
    ASSERT_NE(b, -1);
    zelmp_close_threads();
    EXPECT_EQ(zelmp_thread_count(), 0);
    EXPECT_TRUE(eventually([&] { return bool(first.unwound); }));
    EXPECT_TRUE(eventually([&] { return bool(second.unwound); }));

    // The layer sets itself up again on the next start.
    Gate gate;
    const int again = zelmp_start_thread(waitThenLeave, &gate);
    EXPECT_GT(again, b);
    zelmp_post_sema(gate.sema);
    EXPECT_TRUE(eventually([] { return zelmp_thread_count() == 0; }));
}

}  // namespace
