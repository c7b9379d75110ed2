// A separate reader process and the pipes to it.
#include "ReaderProcess.h"

#include <ProcessSignals.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <new>
#include <vector>

extern char** environ;

const char kReaderProcessArgument[] = "--reader-process";

namespace {
const int kRequestFd = 3;  // where the reader finds its pipes
const int kAnswerFd = 4;
const int kSpareFd = 10;
const int kPipeBytes = 1 << 20;  // fewer wake-ups for a large frame
const uint32_t kMaxPathBytes = 1 << 16;
const size_t kDateBytes = 32;

volatile sig_atomic_t readerPid = 0;
uint64_t idleResident = 0;  // the reader's resident size before its last read
int requestFd = -1;         // the tool's ends
int answerFd = -1;

struct Request {
    int32_t requestedDepth;
    int32_t limitIsOption;
    int32_t forProcessing;
    int32_t expectWidth;
    int32_t expectHeight;
    uint32_t pathBytes;
    uint64_t memoryLimit;
};

// What the reader sends first; the message and the samples follow.
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
    uint64_t idleResident;  // the reader's resident size when the request came
    char dateTime[kDateBytes];
    int32_t originX;
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

bool writeAll(int fd, const void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const ssize_t put = write(fd, bytes, size);
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

void closeReader() {
    if (requestFd >= 0) close(requestFd);
    if (answerFd >= 0) close(answerFd);
    requestFd = answerFd = -1;
}

// How the reader ended, once it has: waits for it.
std::string endingOfReader() {
    const pid_t pid = readerPid;
    closeReader();
    if (pid <= 0) return "the reader process ended early";
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    readerPid = 0;
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        if (signal == SIGABRT) return "the image library aborted";
        return std::string("the image library crashed (") + strsignal(signal) + ")";
    }
    if (WIFEXITED(status))
        return "the reader process ended early (exit " + std::to_string(WEXITSTATUS(status)) + ")";
    return "the reader process ended early";
}

bool startReader(std::string* error) {
    // A stop or a crash of the program ends the reader too.
    addSignalCleanup(stopReaderProcess);
    int request[2], answer[2];
    if (pipe2(request, O_CLOEXEC) != 0) {
        *error = std::strerror(errno);
        return false;
    }
    if (pipe2(answer, O_CLOEXEC) != 0) {
        *error = std::strerror(errno);
        close(request[0]);
        close(request[1]);
        return false;
    }
    fcntl(answer[1], F_SETPIPE_SZ, kPipeBytes);
    // The reader's ends go above its fixed numbers first, so that placing one
    // cannot overwrite the other.
    const int theirRequest = fcntl(request[0], F_DUPFD_CLOEXEC, kSpareFd);
    const int theirAnswer = fcntl(answer[1], F_DUPFD_CLOEXEC, kSpareFd);
    close(request[0]);
    close(answer[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, theirRequest, kRequestFd);
    posix_spawn_file_actions_adddup2(&actions, theirAnswer, kAnswerFd);
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
    close(theirRequest);
    close(theirAnswer);
    if (failed || theirRequest < 0 || theirAnswer < 0) {
        if (!failed) kill(pid, SIGKILL);
        *error = std::strerror(failed ? failed : EMFILE);
        close(request[1]);
        close(answer[0]);
        return false;
    }
    readerPid = pid;
    requestFd = request[1];
    answerFd = answer[0];
    return true;
}

// Reads the reader's answer; false when it is incomplete.
bool receive(RunStatus* status, FilePixels* picture, int* depth) {
    Answer answer;
    if (!readAll(answerFd, &answer, sizeof answer)) return false;
    idleResident = answer.idleResident;
    std::string message(answer.messageBytes, '\0');
    if (answer.messageBytes && !readAll(answerFd, &message[0], message.size())) return false;
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
    if (read.width < 1 || read.height < 1 || answer.sampleBytes != read.sampleCount() * sampleSize)
        return false;
    void* samples;
    if (read.isFloat) {
        read.reals.resize(read.sampleCount());
        samples = read.reals.data();
    } else {
        read.words.resize(read.sampleCount());
        samples = read.words.data();
    }
    if (!readAll(answerFd, samples, answer.sampleBytes)) return false;
    *picture = std::move(read);
    *depth = answer.depth;
    *status = RunStatus::success();
    return true;
}

// The reader's answer to one request.
bool answerRequest(const std::string& path, const ReadRequest& request) {
    // Everything of the previous read is freed by now: what is left is the reader itself.
    const uint64_t idle = statusField("/proc/self/status", "VmRSS:");
    FilePixels picture;
    int depth = 0;
    RunStatus status;
    try {
        status = decodeImage(path, request, &picture, &depth);
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
    const void* samples = nullptr;
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
        answer.sampleBytes = picture.isFloat ? picture.reals.size() * sizeof(float)
                                             : picture.words.size() * sizeof(uint16_t);
        samples = picture.isFloat ? static_cast<const void*>(picture.reals.data())
                                  : static_cast<const void*>(picture.words.data());
    }
    return writeAll(kAnswerFd, &answer, sizeof answer) &&
           writeAll(kAnswerFd, status.message.data(), status.message.size()) &&
           (!samples || writeAll(kAnswerFd, samples, answer.sampleBytes));
}
}  // namespace

RunStatus readInReaderProcess(const std::string& path, const ReadRequest& request,
                              FilePixels* picture, int* depth) {
    std::string error;
    if (readerPid <= 0 && !startReader(&error))
        return RunStatus::failure(ExitCode::Input,
                                  "cannot read " + path + ": no reader process: " + error);
    Request sent = {};
    sent.requestedDepth = request.requestedDepth;
    sent.limitIsOption = request.limitIsOption;
    sent.forProcessing = request.forProcessing;
    sent.expectWidth = request.expectWidth;
    sent.expectHeight = request.expectHeight;
    sent.pathBytes = static_cast<uint32_t>(path.size());
    sent.memoryLimit = request.memoryLimit;
    // A reader that died on the previous file has closed its end: no SIGPIPE, just false.
    struct sigaction ignore = {}, saved;
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &saved);
    const bool asked =
        writeAll(requestFd, &sent, sizeof sent) && writeAll(requestFd, path.data(), path.size());
    sigaction(SIGPIPE, &saved, nullptr);
    RunStatus status;
    if (asked && receive(&status, picture, depth)) return status;
    return RunStatus::failure(ExitCode::Input, "cannot read " + path + ": " + endingOfReader() +
                                                   "; the file is probably damaged");
}

int serveReaderRequests() {
    // Ends with the tool, even when the tool is killed outright.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == 1) return 0;
    configureImageLibrary();
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
        if (!answerRequest(path, asked)) return 1;
    }
    return 0;
}

uint64_t readerPeakMemory() {
    const pid_t pid = readerPid;
    return pid > 0 ? statusField("/proc/" + std::to_string(pid) + "/status", "VmHWM:") : 0;
}

uint64_t readerIdleMemory() { return idleResident; }

void stopReaderProcess() {
    const pid_t pid = readerPid;
    if (pid > 0) kill(pid, SIGKILL);
}
