// Set-up and tear-down of the thread layer, and the process-wide state its
// parts share: the machine's CPU count, the processor count the executor runs
// with (0 until set or first used), the data lock that guards the thread table,
// the serialiser that keeps executor runs and thread kills apart (always taken
// before the data lock), and the function that creates threads.
//
// The layer sets itself up on first use; zelmp_close_threads cancels every
// tracked thread and executor worker and destroys the locks. It must not race
// with other calls into the layer.
#pragma once

#include <pthread.h>

#include <atomic>

void zelmp_init_threads();
void zelmp_close_threads();

// Used by the layer's own files only.
namespace zelmp_internal {

// Heap tag of the layer's allocations.
constexpr const char* kHeapSource = "zelpi_baselib/threads";

bool ready();
void* dataLock();
void* serialiser();
// 1 until the layer is set up, then the machine's count, at least 1.
int cpuCount();
std::atomic<int>& processorCount();
// pthread_create, or the stand-in a test installed.
int createThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                 void* arg);

// Called by zelmp_close_threads with the data lock held.
void cancelTableThreads();
void cancelExecutorWorkers();

}  // namespace zelmp_internal
