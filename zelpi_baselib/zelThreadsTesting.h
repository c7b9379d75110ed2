// Test seams of the thread layer. Only tests call these: programs set the
// processor count once with zelmp_set_nprocs and always create threads with
// pthread_create.
#pragma once

#include <pthread.h>

// Forgets the processor count (back to 0, "not set"), including a fall-back to 1.
void zelmp_reset_nprocs_for_tests();

using zelmp_thread_creator = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

// Creates every later thread of the layer through `creator`; null restores pthread_create.
void zelmp_set_thread_creator_for_tests(zelmp_thread_creator creator);
