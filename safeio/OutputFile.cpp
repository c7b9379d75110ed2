// Files written aside and renamed into place; the temporaries' names, their
// registry for signal handlers and the sweep of stale ones.
#include "OutputFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <vector>

namespace safeio {

namespace {
const int kMachineDigits = 8;  // hex digits of the host-name hash
const int kRandomLetters = 8;
const int kMaxPidDigits = 10;
const long kMaxPid = 2147483647L;  // pid_t is an int
const size_t kMaxExtension = 16;   // a longer "extension" is left out of the name
const int kCreateAttempts = 100;
const int kSlots = 16;  // temporaries open at once; a program has one or two
const size_t kMaxTagBytes = 32;
const size_t kSlotBytes = 4096;
const size_t kRewriteChunk = 1 << 20;
const long kMaxSpins = 100000000;  // a fraction of a second
const unsigned kFnvOffset = 2166136261u;
const unsigned kFnvPrime = 16777619u;
const char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";

// Paths of open temporaries, read by a signal handler on any thread: a
// slot's text is complete before its flag is set and the flag cleared before
// it is reused. Writers on several threads take slots under slotLock (never
// taken by the handler).
char slotPaths[kSlots][kSlotBytes];
std::atomic<int> slotUsed[kSlots];
std::mutex slotLock;
// A temporary being created on some thread (counted while it is), and the
// signal cleanup's mark: once set, no temporary is created any more (the
// process is ending), and the cleanup waits for the creations under way to
// be registered before it walks the slots, so that none escapes it.
std::atomic<int> creating{0};
std::atomic<int> removing{0};
static_assert(std::atomic<int>::is_always_lock_free, "read by a signal handler");

// Holds off the signals whose handlers remove temporaries.
class SignalHold {
  public:
    SignalHold() {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGINT);
        sigaddset(&set, SIGTERM);
        sigaddset(&set, SIGHUP);
        pthread_sigmask(SIG_BLOCK, &set, &saved_);
    }
    ~SignalHold() { pthread_sigmask(SIG_SETMASK, &saved_, nullptr); }
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;

  private:
    sigset_t saved_;
};

// The process's tag: set by its program, else the executable's own name,
// reduced to letters, digits, '-' and '_' so that the pattern stays parseable.
std::string& tagText() {
    static std::string tag;
    return tag;
}

std::string cleanTag(const char* name) {
    std::string tag;
    for (const char* p = name; p && *p && tag.size() < kMaxTagBytes; ++p)
        if (std::isalnum(static_cast<unsigned char>(*p)) || *p == '-' || *p == '_') tag += *p;
    return tag.empty() ? "partial" : tag;
}

int registerSlot(const std::string& path) {
    std::lock_guard<std::mutex> lock(slotLock);
    for (int i = 0; i < kSlots; ++i) {
        if (slotUsed[i]) continue;
        std::memcpy(slotPaths[i], path.c_str(), path.size() + 1);
        slotUsed[i] = 1;
        return i;
    }
    return -1;
}

void releaseSlot(int slot) {
    std::lock_guard<std::mutex> lock(slotLock);
    if (slot >= 0) slotUsed[slot] = 0;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

// ".ext" of the target's file name, or empty.
std::string extensionOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = base.rfind('.');
    if (dot == std::string::npos || dot == 0 || base.size() - dot > kMaxExtension) return "";
    return base.substr(dot);
}

std::string machineTag() {
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0) name[0] = '\0';
    unsigned hash = kFnvOffset;
    for (const char* p = name; *p; ++p) {
        hash ^= static_cast<unsigned char>(*p);
        hash *= kFnvPrime;
    }
    char text[kMachineDigits + 1];
    std::snprintf(text, sizeof text, "%08x", hash);
    return text;
}

std::string randomLetters() {
    unsigned char bytes[kRandomLetters];
    if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) {
        // No entropy source: the exclusive create still keeps clashes harmless.
        unsigned long mix = static_cast<unsigned long>(time(nullptr)) * 2654435761u ^
                            static_cast<unsigned long>(getpid());
        for (unsigned char& byte : bytes) {
            mix = mix * 6364136223846793005ul + 1442695040888963407ul;
            byte = static_cast<unsigned char>(mix >> 33);
        }
    }
    std::string text;
    for (unsigned char byte : bytes) text += kLetters[byte % (sizeof kLetters - 1)];
    return text;
}

bool allOf(const std::string& text, size_t from, size_t count, int (*test)(int)) {
    if (from + count > text.size()) return false;
    for (size_t i = from; i < from + count; ++i)
        if (!test(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

int isLowerOrDigit(int c) { return std::islower(c) || std::isdigit(c); }
int isLowerHex(int c) { return std::isdigit(c) || (c >= 'a' && c <= 'f'); }

// Splits a temporary's name into its machine tag and process id.
bool parseTemporaryName(const std::string& name, std::string* machine, long* pid) {
    const std::string prefix = temporaryPrefix();
    if (name.compare(0, prefix.size(), prefix) != 0) return false;
    size_t at = prefix.size();
    if (!allOf(name, at, kMachineDigits, isLowerHex)) return false;
    const std::string tag = name.substr(at, kMachineDigits);
    at += kMachineDigits;
    if (at >= name.size() || name[at] != '-') return false;
    size_t digits = 0;
    while (at + 1 + digits < name.size() &&
           std::isdigit(static_cast<unsigned char>(name[at + 1 + digits])))
        ++digits;
    if (digits == 0 || digits > static_cast<size_t>(kMaxPidDigits)) return false;
    const long number = std::stol(name.substr(at + 1, digits));
    at += 1 + digits;
    if (at >= name.size() || name[at] != '-') return false;
    ++at;
    if (!allOf(name, at, kRandomLetters, isLowerOrDigit)) return false;
    at += kRandomLetters;
    if (at != name.size() && name[at] != '.') return false;
    if (machine) *machine = tag;
    if (pid) *pid = number;
    return true;
}
}  // namespace

void setTemporaryTag(const std::string& program) { tagText() = cleanTag(program.c_str()); }

std::string temporaryPrefix() {
    if (tagText().empty()) tagText() = cleanTag(program_invocation_short_name);
    return "." + tagText() + "-";
}

OutputFile::~OutputFile() { discard(); }

bool OutputFile::open(const std::string& target, std::string* error) {
    discard();
    target_ = target;
    failure_.clear();
    end_ = 0;
    synced_ = false;
    const std::string folder = folderOf(target);
    const std::string stem =
        folder + "/" + temporaryPrefix() + machineTag() + "-" + std::to_string(getpid()) + "-";
    for (int attempt = 0; attempt < kCreateAttempts; ++attempt) {
        const std::string name = stem + randomLetters() + extensionOf(target);
        if (name.size() >= kSlotBytes) {
            *error = "the folder name is too long: " + folder;
            return false;
        }
        SignalHold hold;
        ++creating;
        if (removing) {
            --creating;
            *error = "the program is stopping";
            return false;
        }
        const int slot = registerSlot(name);
        const int fd = slot < 0 ? -1
                                : ::open(name.c_str(),
                                         O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        const int openError = errno;
        --creating;
        if (slot < 0) {
            *error = "too many files open for writing at once";
            return false;
        }
        if (fd < 0) {
            releaseSlot(slot);
            // Something already has this name (perhaps a planted link): take another.
            if (openError == EEXIST || openError == ELOOP) continue;
            *error = "cannot create a file in " + folder + ": " + std::strerror(openError);
            return false;
        }
        fd_ = fd;
        slot_ = slot;
        temporary_ = name;
        return true;
    }
    *error = "cannot find a free temporary name in " + folder;
    return false;
}

bool OutputFile::writeAt(const void* data, size_t size, uint64_t offset) {
    if (fd_ < 0 || !failure_.empty()) return false;
    const auto* bytes = static_cast<const unsigned char*>(data);
    size_t done = 0;
    while (done < size) {
        const ssize_t written =
            pwrite(fd_, bytes + done, size - done, static_cast<off_t>(offset + done));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            failure_ = written < 0 ? std::strerror(errno) : "the disk took no more bytes";
            return false;
        }
        done += static_cast<size_t>(written);
    }
    if (offset + size > end_) end_ = offset + size;
    synced_ = false;
    return true;
}

bool OutputFile::sync() {
    if (fd_ < 0 || !failure_.empty()) return false;
    if (fsync(fd_) != 0) {
        failure_ = std::strerror(errno);
        return false;
    }
    synced_ = true;
    return true;
}

bool OutputFile::write(const void* data, size_t size) { return writeAt(data, size, end_); }

size_t OutputFile::readAt(void* data, size_t size, uint64_t offset) {
    if (fd_ < 0) return 0;
    auto* bytes = static_cast<unsigned char*>(data);
    size_t done = 0;
    while (done < size) {
        const ssize_t got =
            pread(fd_, bytes + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

bool OutputFile::rewriteInPlace() {
    if (fd_ < 0 || !failure_.empty()) return false;
    const uint64_t total = size();
    std::vector<unsigned char> chunk(kRewriteChunk);
    for (uint64_t at = 0; at < total; at += chunk.size()) {
        const size_t count = static_cast<size_t>(std::min<uint64_t>(chunk.size(), total - at));
        if (readAt(chunk.data(), count, at) != count) {
            failure_ = "the written file does not read back";
            return false;
        }
        if (!writeAt(chunk.data(), count, at)) return false;
    }
    return true;
}

uint64_t OutputFile::size() const {
    struct stat status;
    if (fd_ < 0 || fstat(fd_, &status) != 0) return end_;
    return static_cast<uint64_t>(status.st_size);
}

bool OutputFile::commit(std::string* error) {
    if (fd_ < 0) {
        *error = "no file is open";
        return false;
    }
    // A disk that runs out of space or fails may only say so at the sync or the close.
    if (failure_.empty() && !synced_ && fsync(fd_) != 0) failure_ = std::strerror(errno);
    if (::close(fd_) != 0 && failure_.empty()) failure_ = std::strerror(errno);
    fd_ = -1;
    // A device, a pipe or a socket under the target's name is never replaced
    // by a file (as root, a set-up saved as /dev/null would replace it).
    struct stat existing;
    if (failure_.empty() && lstat(target_.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode) &&
        !S_ISLNK(existing.st_mode))
        failure_ = "it exists and is not a regular file";
    if (!failure_.empty()) {
        *error = failure_;
        discard();
        return false;
    }
    {
        SignalHold hold;
        if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
            *error = std::strerror(errno);
            unlink(temporary_.c_str());
            releaseSlot(slot_);
            slot_ = -1;
            temporary_.clear();
            return false;
        }
        releaseSlot(slot_);
        slot_ = -1;
    }
    temporary_.clear();
    // Makes the rename itself durable; a folder that cannot be synced (some
    // network file systems) has still received the complete file.
    const int folder = ::open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        ::close(folder);
    }
    return true;
}

void OutputFile::discard() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    if (temporary_.empty()) return;
    SignalHold hold;
    unlink(temporary_.c_str());
    releaseSlot(slot_);
    slot_ = -1;
    temporary_.clear();
}

bool isTemporaryName(const std::string& name) { return parseTemporaryName(name, nullptr, nullptr); }

int removeStaleTemporaries(const std::string& folder, time_t before) {
    DIR* dir = opendir(folder.c_str());
    if (!dir) return 0;
    const std::string ours = machineTag();
    int removed = 0;
    while (const dirent* entry = readdir(dir)) {
        std::string machine;
        long pid = 0;
        if (!parseTemporaryName(entry->d_name, &machine, &pid) || machine != ours) continue;
        // A live process (or one we may not signal) may still be writing it.
        if (pid == getpid() || pid <= 0 || pid > kMaxPid || kill(static_cast<pid_t>(pid), 0) == 0 ||
            errno != ESRCH)
            continue;
        struct stat status;
        if (fstatat(dirfd(dir), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || status.st_mtime >= before)
            continue;
        if (unlinkat(dirfd(dir), entry->d_name, 0) == 0) ++removed;
    }
    closedir(dir);
    return removed;
}

void removeOpenTemporaries() {
    removing = 1;
    // The creations under way on other threads finish registering (the stop
    // signals are held off on theirs; a crash inside one is waited for a
    // moment only).
    for (long spins = 0; creating > 0 && spins < kMaxSpins; ++spins) {
    }
    for (int i = 0; i < kSlots; ++i)
        if (slotUsed[i]) unlink(slotPaths[i]);
}

}  // namespace safeio
