// The host's multi-processing: sparkMpFork runs a function once per processor
// on real threads and sparkMpInfo tells each worker its share of the frame.
//
// Shares are kShareLength pixels each in processor order, so a worker's
// offset / length is its index.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <thread>
#include <vector>

#include "CallText.h"
#include "SimHost.h"

using simhost::argText;
using simhost::Host;

namespace {
const unsigned long kShareLength = 1000;  // pixels in one worker's share
const int kMaxForkArgs = 8;               // pointer arguments a forked function may take
const int kOutsideWorker = -1;

thread_local int currentWorker = kOutsideWorker;

using Args = std::vector<void*>;

// Calls fn with as many pointer arguments as the plug-in passed.
void callWithArgs(void (*fn)(), const Args& a) {
    using F0 = void (*)();
    using F1 = void (*)(void*);
    using F2 = void (*)(void*, void*);
    using F3 = void (*)(void*, void*, void*);
    using F4 = void (*)(void*, void*, void*, void*);
    using F5 = void (*)(void*, void*, void*, void*, void*);
    using F6 = void (*)(void*, void*, void*, void*, void*, void*);
    using F7 = void (*)(void*, void*, void*, void*, void*, void*, void*);
    using F8 = void (*)(void*, void*, void*, void*, void*, void*, void*, void*);
    switch (a.size()) {
        case 0:
            reinterpret_cast<F0>(fn)();
            break;
        case 1:
            reinterpret_cast<F1>(fn)(a[0]);
            break;
        case 2:
            reinterpret_cast<F2>(fn)(a[0], a[1]);
            break;
        case 3:
            reinterpret_cast<F3>(fn)(a[0], a[1], a[2]);
            break;
        case 4:
            reinterpret_cast<F4>(fn)(a[0], a[1], a[2], a[3]);
            break;
        case 5:
            reinterpret_cast<F5>(fn)(a[0], a[1], a[2], a[3], a[4]);
            break;
        case 6:
            reinterpret_cast<F6>(fn)(a[0], a[1], a[2], a[3], a[4], a[5]);
            break;
        case 7:
            reinterpret_cast<F7>(fn)(a[0], a[1], a[2], a[3], a[4], a[5], a[6]);
            break;
        default:
            reinterpret_cast<F8>(fn)(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7]);
            break;
    }
}
}  // namespace

namespace simhost {
int Host::workerIndex() { return currentWorker; }
}  // namespace simhost

extern "C" {

void sparkMpFork(void (*fn)(), int argCount, ...) {
    simhost::note("sparkMpFork", argCount);
    if (!fn) return;
    if (argCount > kMaxForkArgs) {
        std::fprintf(stderr, "simhost: sparkMpFork with %d arguments; at most %d are supported\n",
                     argCount, kMaxForkArgs);
        return;
    }
    Args args;
    va_list list;
    va_start(list, argCount);
    for (int i = 0; i < argCount; ++i) args.push_back(va_arg(list, void*));
    va_end(list);

    const int workers = std::max(1, Host::instance().processors);
    // Workers 1 and up run on threads of their own; worker 0 runs on the
    // calling thread meanwhile, as a host's own thread takes a share.
    // A share whose thread cannot start (no memory for its stack) runs on
    // the calling thread afterwards, so every share is done either way.
    std::vector<std::thread> threads;
    int unstarted = 1;  // the first share without a thread
    try {
        threads.reserve(static_cast<size_t>(workers - 1));
        for (; unstarted < workers; ++unstarted) {
            const int index = unstarted;
            threads.emplace_back([fn, &args, index] {
                currentWorker = index;
                callWithArgs(fn, args);
                currentWorker = kOutsideWorker;
            });
        }
    } catch (const std::exception&) {
    }
    const int outer = currentWorker;
    currentWorker = 0;
    callWithArgs(fn, args);
    for (int index = unstarted; index < workers; ++index) {
        currentWorker = index;
        callWithArgs(fn, args);
    }
    currentWorker = outer;
    for (std::thread& thread : threads) thread.join();
}

void sparkMpInfo(unsigned long* offset, unsigned long* length) {
    const int worker = std::max(0, currentWorker);
    simhost::note("sparkMpInfo");
    if (offset) *offset = static_cast<unsigned long>(worker) * kShareLength;
    if (length) *length = kShareLength;
}

}  // extern "C"
