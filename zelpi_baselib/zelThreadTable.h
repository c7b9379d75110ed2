// The table of long-lived detached threads: up to 32 at a time, each known by
// an id handed out in increasing order from 4096. A tracked thread calls
// zelmp_leaving_thread before it returns, so that its entry does not outlive it.
// Messages go to the message log.
#pragma once

constexpr int kZelmpMaxThreads = 32;
constexpr int kZelmpFirstThreadId = 4096;

// Starts fn(arg) on a detached thread; its id, or -1 when the table is full or
// the thread cannot be created. Creation that fails for want of resources is
// retried every second, up to 10000 times.
int zelmp_start_thread(void* (*fn)(void*), void* arg);
// Cancels the tracked thread with this id and drops its entry; other ids are ignored.
void zelmp_kill_thread(int id);
// Drops the calling thread's own entry.
void zelmp_leaving_thread();

// Entries in use, and whether an id is among them.
int zelmp_thread_count();
bool zelmp_thread_tracked(int id);
