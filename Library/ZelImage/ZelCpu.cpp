#include "ZelCpu.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

// -1 not yet decided, 0 plain, 1 AVX2. Read from many band workers at once.
std::atomic<int> chosenPath{-1};

// Decided once, by whichever thread asks first (band workers may ask at once).
int processorPath() {
    static const int path = [] {
#if defined(__x86_64__) || defined(__i386__)
        const char* plain = std::getenv("STRAIGHTLUX_PLAIN_CPU");
        if (plain != nullptr && *plain != '\0' && std::strcmp(plain, "0") != 0) return 0;
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") ? 1 : 0;
#else
        return 0;
#endif
    }();
    return path;
}

}  // namespace

bool zelUseAvx2() {
    int path = chosenPath.load(std::memory_order_relaxed);
    if (path < 0) {
        path = processorPath();
        chosenPath.store(path, std::memory_order_relaxed);
    }
    return path == 1;
}

void zelForcePlainCpu(bool plain) {
    chosenPath.store(plain ? 0 : processorPath(), std::memory_order_relaxed);
}
