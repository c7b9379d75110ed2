// Mutex, condition and semaphore wrappers over POSIX threads. Every object
// comes from the tracked heap and is handed out as an opaque pointer; every
// call tolerates a null pointer (it fails or does nothing). Times are in
// nanoseconds.
#pragma once

// A mutex; recursive when `recursive` is non-zero, otherwise error-checking, so
// that taking it twice or releasing it unheld fails instead of hanging. Null
// when it cannot be made.
void* zelmp_new_mutex(int recursive);
// Blocks until the mutex is taken; false on error.
bool zelmp_get_mutex(void* mutex);
// Takes the mutex when it is free; true when taken.
bool zelmp_test_mutex(void* mutex);
// A failing release logs "THREAD: mutex lock errors...".
void zelmp_release_mutex(void* mutex);
void zelmp_delete_mutex(void* mutex);

// A condition variable, null when it cannot be made.
void* zelmp_new_cond_block();
void zelmp_delete_cond_block(void* cond);
// These return the POSIX result: 0 or an error number.
int zelmp_cond_signal(void* cond);
int zelmp_cond_wait(void* cond, void* mutex);
// Waits until the absolute real-time clock reading given in nanoseconds
// (seconds = ns / 1000000000, nanoseconds = ns mod 1000000000); ETIMEDOUT once
// it has passed. Any other failure is logged.
int zelmp_cond_timedwait(void* cond, void* mutex, int ns);

// A semaphore holding `value`; null when it cannot be made (value below 0).
void* zelmp_new_sema(int value);
void zelmp_delete_sema(void* sema);
// 1 done, -1 failure.
int zelmp_post_sema(void* sema);
// Blocks until taken: 1, or -1 on failure.
int zelmp_wait_sema(void* sema);
// 1 when taken, 0 when it would block, -1 on other errors.
int zelmp_test_sema(void* sema);
