// Separate reader processes and the sockets and shared memory between them
// and the tool.
#include "ReaderProcess.h"

#include <ProcessSignals.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <mutex>
#include <new>
#include <vector>

extern char** environ;

const char kReaderProcessArgument[] = "--reader-process";

namespace {
const int kRequestFd = 3;  // where the reader finds its socket (twice) and the shared memory
const int kAnswerFd = 4;
const int kSharedFd = 5;
const int kSpareFd = 10;
const uint32_t kMaxPathBytes = 1 << 16;
const size_t kDateBytes = 32;
const int kMaxReaders = 8;

// The readers' process ids for the signal cleanup, and what they keep between reads.
std::atomic<pid_t> readerPids[kMaxReaders];
std::atomic<uint64_t> readerIdle[kMaxReaders];
std::atomic<bool> slotTaken[kMaxReaders];
static_assert(std::atomic<pid_t>::is_always_lock_free, "read by a signal handler");

struct Request {
    int32_t requestedDepth;
    int32_t limitIsOption;
    int32_t forProcessing;
    int32_t expectWidth;
    int32_t expectHeight;
    uint32_t pathBytes;
    uint64_t memoryLimit;
};

// What the reader answers; the message follows, the samples are in the shared memory.
struct Answer {
    int32_t code;
    uint32_t messageBytes;
    int32_t width;
    int32_t height;
    int32_t isFloat;
    int32_t bitsPerSample;
    float pixelAspect;
    int32_t depth;
    uint64_t sampleBytes;
    int32_t samplesFollow;  // the samples come after the message, not in the shared memory
    uint64_t idleResident;  // the reader's resident size when the request came
    char dateTime[kDateBytes];
    int32_t originX;  // the display window's place in the file
    int32_t originY;
};

// A "Name: N kB" field of a /proc status file, in bytes; 0 when absent.
uint64_t statusField(const std::string& file, const std::string& field) {
    std::ifstream status(file);
    std::string name;
    uint64_t kibibytes = 0;
    while (status >> name) {
        if (name == field && status >> kibibytes) return kibibytes * 1024;
        status.ignore(1 << 12, '\n');
    }
    return 0;
}

// send, not write: a reader that died has closed its end, which is a false here, not a SIGPIPE.
bool sendAll(int fd, const void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const ssize_t put = send(fd, bytes, size, MSG_NOSIGNAL);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        bytes += put;
        size -= static_cast<size_t>(put);
    }
    return true;
}

bool readAll(int fd, void* data, size_t size) {
    auto* bytes = static_cast<unsigned char*>(data);
    while (size > 0) {
        const ssize_t got = read(fd, bytes, size);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        bytes += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

int takeSlot() {
    for (int i = 0; i < kMaxReaders; ++i) {
        bool free = false;
        if (slotTaken[i].compare_exchange_strong(free, true)) return i;
    }
    return -1;
}

// The reader's end of the socket and the shared memory at their fixed numbers.
pid_t spawnReader(int socket, int shared) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, socket, kRequestFd);
    posix_spawn_file_actions_adddup2(&actions, socket, kAnswerFd);
    posix_spawn_file_actions_adddup2(&actions, shared, kSharedFd);
    // Whatever a library prints stays off the tool's standard output.
    posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    char* program = program_invocation_short_name;
    std::vector<char> argument(kReaderProcessArgument,
                               kReaderProcessArgument + sizeof kReaderProcessArgument);
    char* argv[] = {program, argument.data(), nullptr};
    pid_t pid = -1;
    std::fflush(nullptr);
    const int failed = posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed ? -failed : pid;
}
}  // namespace

ReaderProcess::~ReaderProcess() {
    if (socket_ >= 0) close(socket_);
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    if (slot_ >= 0) {
        readerPids[slot_] = 0;
        readerIdle[slot_] = 0;
        slotTaken[slot_] = false;
    }
}

bool ReaderProcess::forkNow() {
    addSignalCleanup(stopReaderProcess);
    std::string error;
    if (pid_ > 0 || (slot_ < 0 && (slot_ = takeSlot()) < 0) ||
        (samples_.descriptor() < 0 && !samples_.create(&error)))
        return false;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
    const int theirSocket = fcntl(ends[1], F_DUPFD_CLOEXEC, kSpareFd);
    const int theirShared = fcntl(samples_.descriptor(), F_DUPFD_CLOEXEC, kSpareFd);
    close(ends[1]);
    std::fflush(nullptr);
    const pid_t pid = theirSocket >= 0 && theirShared >= 0 ? fork() : -1;
    if (pid == 0) {
        // The reader: its socket and shared memory at their fixed numbers, and
        // nothing of the program's own exit (no atexit, no destructors).
        if (dup2(theirSocket, kRequestFd) < 0 || dup2(theirSocket, kAnswerFd) < 0 ||
            dup2(theirShared, kSharedFd) < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
            _exit(1);
        _exit(serveReaderRequests());
    }
    if (theirSocket >= 0) close(theirSocket);
    if (theirShared >= 0) close(theirShared);
    if (pid < 0) {
        close(ends[0]);
        return false;
    }
    pid_ = pid;
    readerPids[slot_] = pid;
    socket_ = ends[0];
    return true;
}

void startReaderEarly() {
    defaultReader().forkNow();
    aheadReader().forkNow();
}

bool ReaderProcess::start(std::string* error) {
    // A stop or a crash of the program ends the readers too.
    addSignalCleanup(stopReaderProcess);
    if (slot_ < 0) slot_ = takeSlot();
    if (slot_ < 0) {
        *error = "too many readers";
        return false;
    }
    if (samples_.descriptor() < 0 && !samples_.create(error)) return false;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        *error = std::strerror(errno);
        return false;
    }
    // The reader's ends go above its fixed numbers first, so that placing one
    // cannot overwrite another.
    const int theirSocket = fcntl(ends[1], F_DUPFD_CLOEXEC, kSpareFd);
    const int theirShared = fcntl(samples_.descriptor(), F_DUPFD_CLOEXEC, kSpareFd);
    close(ends[1]);
    const pid_t pid =
        theirSocket >= 0 && theirShared >= 0 ? spawnReader(theirSocket, theirShared) : -EMFILE;
    if (theirSocket >= 0) close(theirSocket);
    if (theirShared >= 0) close(theirShared);
    if (pid <= 0) {
        *error = std::strerror(-pid);
        close(ends[0]);
        return false;
    }
    pid_ = pid;
    readerPids[slot_] = pid;
    socket_ = ends[0];
    return true;
}

// How the reader ended, once it has: waits for it.
std::string ReaderProcess::ending() {
    const pid_t pid = pid_;
    if (socket_ >= 0) close(socket_);
    socket_ = -1;
    pid_ = 0;
    if (slot_ >= 0) readerPids[slot_] = 0;
    if (pid <= 0) return "the reader process ended early";
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        if (signal == SIGABRT) return "the image library aborted";
        return std::string("the image library crashed (") + strsignal(signal) + ")";
    }
    if (WIFEXITED(status))
        return "the reader process ended early (exit " + std::to_string(WEXITSTATUS(status)) + ")";
    return "the reader process ended early";
}

bool ReaderProcess::ask(const std::string& path, const ReadRequest& request) {
    Request sent = {};
    sent.requestedDepth = request.requestedDepth;
    sent.limitIsOption = request.limitIsOption;
    sent.forProcessing = request.forProcessing;
    sent.expectWidth = request.expectWidth;
    sent.expectHeight = request.expectHeight;
    sent.pathBytes = static_cast<uint32_t>(path.size());
    sent.memoryLimit = request.memoryLimit;
    return sendAll(socket_, &sent, sizeof sent) && sendAll(socket_, path.data(), path.size());
}

// Reads the reader's answer; false when it is incomplete.
bool ReaderProcess::receive(RunStatus* status, PixelView* view, FilePixels* facts, int* depth) {
    Answer answer;
    if (!readAll(socket_, &answer, sizeof answer)) return false;
    idleResident_ = answer.idleResident;
    readerIdle[slot_] = answer.idleResident;
    std::string message(answer.messageBytes, '\0');
    if (answer.messageBytes && !readAll(socket_, &message[0], message.size())) return false;
    if (answer.code != 0) {
        *status = RunStatus::failure(static_cast<ExitCode>(answer.code), message);
        return true;
    }
    FilePixels read;
    read.width = answer.width;
    read.height = answer.height;
    read.isFloat = answer.isFloat != 0;
    read.bitsPerSample = answer.bitsPerSample;
    read.pixelAspect = answer.pixelAspect;
    read.dateTime.assign(answer.dateTime, strnlen(answer.dateTime, kDateBytes));
    read.origin = {answer.originX, answer.originY};
    const size_t sampleSize = read.isFloat ? sizeof(float) : sizeof(uint16_t);
    std::string error;
    if (read.width < 1 || read.height < 1 || answer.sampleBytes != read.sampleCount() * sampleSize)
        return false;
    const void* samples = nullptr;
    if (answer.samplesFollow) {
        following_.resize(answer.sampleBytes / sizeof(float) + 1);
        if (!readAll(socket_, following_.data(), answer.sampleBytes)) return false;
        samples = following_.data();
    } else {
        if (!samples_.follow(answer.sampleBytes, &error)) return false;
        samples = samples_.data();
    }
    *view = PixelView{read.width, read.height, read.isFloat,
                      read.isFloat ? nullptr : static_cast<const uint16_t*>(samples),
                      read.isFloat ? static_cast<const float*>(samples) : nullptr};
    *facts = std::move(read);
    *depth = answer.depth;
    *status = RunStatus::success();
    return true;
}

RunStatus ReaderProcess::readShared(const std::string& path, const ReadRequest& request,
                                    PixelView* view, FilePixels* facts, int* depth) {
    std::string error;
    if (pid_ <= 0 && !start(&error))
        return RunStatus::failure(ExitCode::Input,
                                  "cannot read " + path + ": no reader process: " + error);
    RunStatus status;
    if (ask(path, request) && receive(&status, view, facts, depth)) return status;
    return RunStatus::failure(ExitCode::Input, "cannot read " + path + ": " + ending() +
                                                   "; the file is probably damaged");
}

RunStatus ReaderProcess::read(const std::string& path, const ReadRequest& request,
                              FilePixels* picture, int* depth) {
    PixelView view;
    FilePixels read;
    const RunStatus status = readShared(path, request, &view, &read, depth);
    if (!status.ok()) return status;
    if (view.isFloat)
        read.reals.assign(view.reals, view.reals + read.sampleCount());
    else
        read.words.assign(view.words, view.words + read.sampleCount());
    *picture = std::move(read);
    return status;
}

uint64_t ReaderProcess::peakMemory() const {
    return pid_ > 0 ? statusField("/proc/" + std::to_string(pid_) + "/status", "VmHWM:") : 0;
}

ReaderProcess& defaultReader() {
    // Never destroyed: the process ends with the tool.
    static ReaderProcess* reader = new ReaderProcess;
    return *reader;
}

ReaderProcess& aheadReader() {
    static ReaderProcess* reader = new ReaderProcess;
    return *reader;
}

RunStatus readInReaderProcess(const std::string& path, const ReadRequest& request,
                              FilePixels* picture, int* depth) {
    return defaultReader().read(path, request, picture, depth);
}

namespace {
// The reader's answer to one request, its samples decoded into the shared memory.
bool answerRequest(const std::string& path, const ReadRequest& request, SharedSamples& shared) {
    // Everything of the previous read is freed by now: what is left is the reader itself.
    const uint64_t idle = statusField("/proc/self/status", "VmRSS:");
    FilePixels picture;
    int depth = 0;
    RunStatus status;
    size_t sampleBytes = 0;
    // A file-size limit (ulimit -f) holds for the shared memory too: past it
    // the samples go through the socket, from memory kept for the next read.
    static std::vector<float> following;
    bool follow = false;
    const SamplePlace place = [&](size_t bytes) -> void* {
        std::string error;
        sampleBytes = bytes;
        if (shared.reserve(bytes, &error)) return shared.data();
        follow = true;
        following.resize(bytes / sizeof(float) + 1);
        return following.data();
    };
    try {
        status = decodeImageInto(path, request, &picture, &depth, place);
    } catch (const std::bad_alloc&) {
        status = RunStatus::failure(ExitCode::Memory, "out of memory while decoding " + path);
    } catch (const std::exception& error) {
        status =
            RunStatus::failure(ExitCode::Input, "cannot read input " + path + ": " + error.what());
    }
    Answer answer = {};
    answer.idleResident = idle;
    answer.code = static_cast<int32_t>(status.code);
    answer.messageBytes = static_cast<uint32_t>(status.message.size());
    if (status.ok()) {
        answer.width = picture.width;
        answer.height = picture.height;
        answer.isFloat = picture.isFloat;
        answer.bitsPerSample = picture.bitsPerSample;
        answer.pixelAspect = picture.pixelAspect;
        answer.depth = depth;
        std::strncpy(answer.dateTime, picture.dateTime.c_str(), kDateBytes - 1);
        answer.originX = picture.origin.x;
        answer.originY = picture.origin.y;
        answer.sampleBytes = sampleBytes;
        answer.samplesFollow = follow;
    }
    return sendAll(kAnswerFd, &answer, sizeof answer) &&
           sendAll(kAnswerFd, status.message.data(), status.message.size()) &&
           (!status.ok() || !follow || sendAll(kAnswerFd, following.data(), sampleBytes));
}
}  // namespace

int serveReaderRequests() {
    // Ends with the tool, even when the tool is killed outright.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == 1) return 0;
    // A file-size limit holds for the shared memory too: a refusal, not a death.
    std::signal(SIGXFSZ, SIG_IGN);
    configureReaderLibrary();
    SharedSamples shared;
    shared.adopt(kSharedFd);
    Request request;
    while (readAll(kRequestFd, &request, sizeof request)) {
        if (request.pathBytes > kMaxPathBytes) return 1;
        std::string path(request.pathBytes, '\0');
        if (request.pathBytes && !readAll(kRequestFd, &path[0], path.size())) return 1;
        ReadRequest asked;
        asked.requestedDepth = request.requestedDepth;
        asked.limitIsOption = request.limitIsOption != 0;
        asked.forProcessing = request.forProcessing != 0;
        asked.expectWidth = request.expectWidth;
        asked.expectHeight = request.expectHeight;
        asked.memoryLimit = request.memoryLimit;
        if (!answerRequest(path, asked, shared)) return 1;
    }
    return 0;
}

uint64_t readerPeakMemory() {
    uint64_t peak = 0;
    for (int i = 0; i < kMaxReaders; ++i) {
        const pid_t pid = readerPids[i];
        if (pid <= 0) continue;
        const uint64_t one = statusField("/proc/" + std::to_string(pid) + "/status", "VmHWM:");
        if (one > peak) peak = one;
    }
    return peak;
}

uint64_t readerIdleMemory() {
    uint64_t sum = 0;
    for (int i = 0; i < kMaxReaders; ++i) sum += readerIdle[i];
    return sum;
}

void endReaderProcesses() {
    for (int i = 0; i < kMaxReaders; ++i) {
        const pid_t pid = readerPids[i].exchange(0);
        if (pid <= 0) continue;
        kill(pid, SIGKILL);
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void stopReaderProcess() {
    for (int i = 0; i < kMaxReaders; ++i) {
        const pid_t pid = readerPids[i];
        if (pid > 0) kill(pid, SIGKILL);
    }
}
