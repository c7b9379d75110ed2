// The new-handler that marks failed allocations.
#include "AllocationWatch.h"

#include <atomic>
#include <new>

namespace {
std::atomic<bool> failed{false};

void markAndFail() {
    failed.store(true);
    throw std::bad_alloc();
}
}  // namespace

void installAllocationWatch() { std::set_new_handler(markAndFail); }

bool allocationFailed() { return failed.exchange(false); }

RunStatus checkAllocations(const std::string& where) {
    if (!allocationFailed()) return RunStatus::success();
    return RunStatus::failure(ExitCode::Memory, "out of memory " + where +
                                                    ": an allocation failed (a smaller frame, a "
                                                    "proxy or more memory would help)");
}
