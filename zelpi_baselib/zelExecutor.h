// Fork-join executor: runs one function on N POSIX threads at once and waits
// for all of them, N being the processor count. Each worker learns its number
// (0 to N - 1) from zelmp_id and its rows from the band arithmetic of
// zelBands.h; rows are inclusive first..last. Runs never overlap: a second run
// waits for the first. With a count of 1 the function runs in the calling
// thread, as it does when called from inside a worker. The functions must not
// throw.
//
// The processor count is set once, before first use, by zelmp_set_nprocs; a run
// that finds it unset takes the machine's CPU count. When a worker cannot be
// created the count drops to 1 for good.
#pragma once

#include <cstdint>

// Six pointer-sized integer arguments, passed through unchanged.
using zelmp_function = void (*)(intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t);
// A band worker: rows first..last inclusive; last < first is an empty share.
using zelmp_band_function = void (*)(void* arg, int first, int last);

void zelmp_exec(zelmp_function fn, intptr_t a1 = 0, intptr_t a2 = 0, intptr_t a3 = 0,
                intptr_t a4 = 0, intptr_t a5 = 0, intptr_t a6 = 0);
// fn(arg, first, last) on every worker over rows 0..total - 1. `owner` is the
// caller's object, carried for its own bookkeeping and not used here.
void zelmp_lib_mp_exec(void* owner, zelmp_band_function fn, int total, void* arg);

// The calling worker's number; 0 outside a run or when the count is below 2.
int zelmp_id();
// This worker's share lo..hi (hi one past the end) of start..end; see zelmp_band_span.
void zelmp_find_band(int start, int end, int& lo, int& hi);
// Whether the calling thread is a worker of the run in progress.
bool zelmp_executor_worker();

// Sets the processor count when it is still unset; afterwards only warns.
void zelmp_set_nprocs(int n);
// The count runs use: the one set, else the machine's CPU count.
int zelmp_get_nprocs();
