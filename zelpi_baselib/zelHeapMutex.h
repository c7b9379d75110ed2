// The one heap mutex: guards both block tables, the override settings and
// every call into an installed or ready-made allocator. Created on first use;
// recursive so that an override may itself call back into the heap.
#pragma once

void acquire_hm_mutex();
void release_hm_mutex();

class zelHeapLock {
  public:
    zelHeapLock() { acquire_hm_mutex(); }
    ~zelHeapLock() { release_hm_mutex(); }
    zelHeapLock(const zelHeapLock&) = delete;
    zelHeapLock& operator=(const zelHeapLock&) = delete;
};
