// Loading a plug-in with dlopen and calling its entry points and callbacks.
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "ControlRecords.h"
#include "SimHost.h"

namespace simhost {

namespace {
const char kCopyTemplate[] = "simhost-plugin-XXXXXX.spark";
const int kCopySuffixLength = 6;  // ".spark"

void setError(std::string* error, const std::string& text) {
    if (error) *error = text;
}

std::string tempDirectory() {
    const char* dir = std::getenv("TMPDIR");
    return dir && *dir ? dir : "/tmp";
}

// Copies the file at path to a new unique temporary file; empty on failure.
std::string privateCopy(const std::string& path, std::string* error) {
    std::string name = tempDirectory() + "/" + kCopyTemplate;
    std::vector<char> buffer(name.begin(), name.end());
    buffer.push_back('\0');
    const int fd = mkstemps(buffer.data(), kCopySuffixLength);
    if (fd < 0) {
        setError(error, "cannot make a private copy of " + path + ": " + std::strerror(errno));
        return "";
    }
    close(fd);
    name = buffer.data();
    std::ifstream in(path, std::ios::binary);
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out << in.rdbuf();
    out.close();
    if (!in || !out) {
        std::remove(name.c_str());
        setError(error, "cannot copy " + path + " to " + name);
        return "";
    }
    return name;
}
}  // namespace

Plugin::~Plugin() {
    if (Host::instance().plugin == this) Host::instance().plugin = nullptr;
    if (handle_) dlclose(handle_);
    handle_ = nullptr;
    if (!copyPath_.empty()) std::remove(copyPath_.c_str());
}

bool Plugin::load(const std::string& path, std::string* error, bool fresh) {
    if (handle_) {
        setError(error, "a plug-in is already loaded in this Plugin object");
        return false;
    }
    struct stat status;
    if (stat(path.c_str(), &status) != 0) {
        setError(error, "no such file: " + path);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        setError(error, "not a file: " + path);
        return false;
    }
    std::string loadPath = path;
    if (fresh) {
        copyPath_ = privateCopy(path, error);
        if (copyPath_.empty()) return false;
        loadPath = copyPath_;
    }
    dlerror();
    handle_ = dlopen(loadPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        const char* reason = dlerror();
        setError(error, "not a loadable shared library: " + path + " (" +
                            (reason ? reason : "unknown reason") + ")");
        if (!copyPath_.empty()) std::remove(copyPath_.c_str());
        copyPath_.clear();
        return false;
    }
    if (!symbol("SparkInitialise")) {
        setError(error, "no SparkInitialise entry point in " + path);
        dlclose(handle_);
        handle_ = nullptr;
        if (!copyPath_.empty()) std::remove(copyPath_.c_str());
        copyPath_.clear();
        return false;
    }
    processStart_ = symbol("SparkProcessStart");
    process_ = symbol("SparkProcess");
    Host::instance().plugin = this;
    return true;
}

void* Plugin::symbol(const char* name) const {
    if (!handle_ || !name) return nullptr;
    return dlsym(handle_, name);
}

std::vector<Plugin::RecordRef> Plugin::records() const {
    std::vector<RecordRef> found;
    if (!handle_) return found;
    for (int number = 1; number <= kMaxRecordNumber; ++number) {
        for (const std::string& kind : recordKinds()) {
            const std::string name = recordSymbol(kind, number);
            if (void* address = symbol(name.c_str()))
                found.push_back({kind, number, name, address});
        }
    }
    return found;
}

// ---- entry points ----

namespace {
using InitialiseFn = unsigned int (*)(SparkInfoStruct);
using UnInitialiseFn = void (*)(SparkInfoStruct);
using ClipsFn = int (*)(void);
using ProcessStartFn = int (*)(SparkInfoStruct);
using ProcessFn = unsigned long* (*)(SparkInfoStruct);
using VoidFn = void (*)(void);
using OverlayFn = void (*)(SparkInfoStruct, float);
using InteractFn = unsigned long* (*)(SparkInfoStruct, int, int, float, float, float, float);

template <class F>
F entry(const Plugin& plugin, const char* name) {
    return reinterpret_cast<F>(plugin.symbol(name));
}
}  // namespace

unsigned int Plugin::initialise(const SparkInfoStruct& info) {
    auto fn = entry<InitialiseFn>(*this, "SparkInitialise");
    return fn ? fn(info) : 0;
}

void Plugin::uninitialise(const SparkInfoStruct& info) {
    if (auto fn = entry<UnInitialiseFn>(*this, "SparkUnInitialise")) fn(info);
}

int Plugin::clips() {
    auto fn = entry<ClipsFn>(*this, "SparkClips");
    return fn ? fn() : 0;
}

int Plugin::processStart(const SparkInfoStruct& info) {
    auto fn = reinterpret_cast<ProcessStartFn>(processStart_);
    return fn ? fn(info) : 0;
}

unsigned long* Plugin::process(const SparkInfoStruct& info) {
    auto fn = reinterpret_cast<ProcessFn>(process_);
    return fn ? fn(info) : nullptr;
}

void Plugin::memoryTempBuffers() {
    if (auto fn = entry<VoidFn>(*this, "SparkMemoryTempBuffers")) fn();
}

void Plugin::channelEditor() {
    if (auto fn = entry<VoidFn>(*this, "SparkChannelEditor")) fn();
}

void Plugin::overlay(const SparkInfoStruct& info, float zoom) {
    if (auto fn = entry<OverlayFn>(*this, "SparkOverlay")) fn(info, zoom);
}

unsigned long* Plugin::interact(const SparkInfoStruct& info, int sx, int sy, float pressure,
                                float vx, float vy, float zoom) {
    auto fn = entry<InteractFn>(*this, "SparkInteract");
    return fn ? fn(info, sx, sy, pressure, vx, vy, zoom) : nullptr;
}

unsigned long* Plugin::callback(const std::string& recordSymbol, int arg,
                                const SparkInfoStruct& info) {
    std::string kind;
    if (!parseRecordSymbol(recordSymbol, &kind, nullptr)) return nullptr;
    SparkCallbackFunc fn = recordCallback(kind, symbol(recordSymbol.c_str()));
    return fn ? fn(arg, info) : nullptr;
}

}  // namespace simhost
