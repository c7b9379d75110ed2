// Shared by the framework tests: a fake host service (ZelHost) that records
// the calls the framework makes, as "name(arg,...)" texts named after the
// host functions they stand for; forks on real threads, one per processor,
// each told its share as the host does.
#pragma once

#include <algorithm>
#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ZelHost.h"

namespace fakehost {

class Host {
  public:
    static Host& instance() {
        static Host host;
        return host;
    }
    // Installs the fakes into the framework's host service and forgets every call.
    void reset() {
        calls_.clear();
        curveFn = nullptr;
        frameSource = nullptr;
        processors = 1;
        ZelHost& host = zelHost();
        host = ZelHost{};
        host.message = [](const char* text) {
            instance().record("sparkMessage(" + std::string(text) + ")");
        };
        host.getFrame = [](int clip, int frame, unsigned long* destination) {
            Host& self = instance();
            self.record("sparkGetFrame(" + std::to_string(clip) + "," + std::to_string(frame) +
                        ")");
            if (self.frameSource) self.frameSource(clip, frame, destination);
        };
        host.fork = [](void (*worker)(void*), void* job) {
            Host& self = instance();
            self.record("sparkMpFork");
            std::vector<std::thread> threads;
            for (int index = 0; index < std::max(1, self.processors); ++index) {
                threads.emplace_back([worker, job, index] {
                    workerIndex() = index;
                    worker(job);
                });
            }
            for (std::thread& thread : threads) thread.join();
        };
        host.share = [](unsigned long* offset, unsigned long* length) {
            *offset = static_cast<unsigned long>(workerIndex()) * kShareLength;
            *length = kShareLength;
        };
        host.curveValue = [](int control, float time) {
            Host& self = instance();
            self.record("sparkGetCurveValuef(1," + std::to_string(control) + "," + text(time) +
                        ")");
            return self.curveFn ? self.curveFn(1, control, time) : 0.0f;
        };
        host.controlUpdate = [](int control) {
            instance().record("sparkControlUpdate(" + std::to_string(control) + ")");
        };
        host.enableField = [](int control) {
            instance().record("sparkEnableParameter(1," + std::to_string(control) + ")");
        };
        host.disableField = [](int control) {
            instance().record("sparkDisableParameter(1," + std::to_string(control) + ")");
        };
    }
    void clearCalls() { calls_.clear(); }
    const std::vector<std::string>& calls() const { return calls_; }
    bool called(const std::string& call) const {
        return std::find(calls_.begin(), calls_.end(), call) != calls_.end();
    }
    int count(const std::string& name) const {
        int n = 0;
        for (const std::string& call : calls_) n += call.compare(0, name.size(), name) == 0;
        return n;
    }

    // The frame source of random frame access: fills the destination buffer.
    std::function<void(int clip, int frame, unsigned long* destination)> frameSource;
    // Workers a fork runs, each on its own thread.
    int processors = 1;

    // The animation curve: (type, control, time) -> value.
    float (*curveFn)(int type, int control, float time) = nullptr;

  private:
    static std::string text(float value) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%g", static_cast<double>(value));
        return buffer;
    }
    static constexpr unsigned long kShareLength = 1000;
    static int& workerIndex() {
        thread_local int index = 0;
        return index;
    }
    void record(std::string call) {
        std::lock_guard<std::mutex> lock(mutex_);
        calls_.push_back(std::move(call));
    }
    std::mutex mutex_;
    std::vector<std::string> calls_;
};

}  // namespace fakehost

inline void resetHost() { fakehost::Host::instance().reset(); }

inline std::vector<std::string> hostCalls() { return fakehost::Host::instance().calls(); }
