// OutputFile: a file written under a temporary name in its target's folder
// and renamed over the target only when every byte is on the disk, so that a
// reader never sees half a file and a failure leaves nothing behind. Set-ups
// and pictures are written through it.
//
// The temporary is created exclusively (O_CREAT | O_EXCL | O_NOFOLLOW, a
// fresh random name on a clash), so a file or symlink planted in a shared
// folder is never written through. Its name is
//     .<program>-<machine>-<pid>-<random>[.<extension of the target>]
// <program> is the tag the program sets (setTemporaryTag; by default the
// executable's name), <machine> 8 hex digits of a hash of the host name and <random> 8
// letters or digits. A later run recognises this pattern and removes the
// temporaries that a process of the same machine left when it died (see
// removeStaleTemporaries); nothing else has a name of this form.
//
// Writes are checked (a short write is retried, an error kept and reported);
// commit syncs the file, closes it, checks the close and renames. While a
// temporary exists its path is registered, so that a signal handler can
// remove it (removeOpenTemporaries is async-signal-safe); SIGINT, SIGTERM and
// SIGHUP are held off while a temporary is created or renamed, so the
// registration always matches the disk. Files may be written on several
// threads at once (one OutputFile each): the cleanup, on whichever thread the
// signal lands, waits for the creations under way to register and refuses
// new ones, so it removes every temporary there is.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

namespace safeio {

class OutputFile {
  public:
    OutputFile() = default;
    ~OutputFile();  // an uncommitted temporary is removed
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Creates the temporary for target (which is not touched yet).
    bool open(const std::string& target, std::string* error);

    // Writes size bytes at offset; false (and the error kept) on failure.
    bool writeAt(const void* data, size_t size, uint64_t offset);
    // Writes at the end of what was written so far.
    bool write(const void* data, size_t size);
    // Reads back what was written (some picture writers reread their headers).
    size_t readAt(void* data, size_t size, uint64_t offset);
    uint64_t size() const;

    // For a writer that wrote the temporary by its name, not through this
    // object: every byte is read and written again through the checked
    // writes, so that a write it lost without saying fails here with the
    // disk's reason (a writer that seeks past a write refused by a full disk
    // leaves a hole, which reads back as zeros). False with the failure kept.
    bool rewriteInPlace();

    // The first write failure, empty when none.
    const std::string& failure() const { return failure_; }

    // fsync now (commit then syncs only what was written after): lets files
    // reach the disk at once while their commits must come one after another.
    bool sync();
    // fsync, close, rename over the target. On any failure the temporary is
    // removed and *error tells why (the first write failure wins). A target
    // that exists and is neither a regular file nor a link (a device, a
    // pipe, a socket) is not replaced: that is a failure too.
    bool commit(std::string* error);
    // Removes the temporary.
    void discard();

    int descriptor() const { return fd_; }
    const std::string& temporaryPath() const { return temporary_; }
    const std::string& target() const { return target_; }

  private:
    int fd_ = -1;
    int slot_ = -1;
    uint64_t end_ = 0;
    bool synced_ = false;
    std::string target_;
    std::string temporary_;
    std::string failure_;
};

// Names this process's temporaries after program ("sparkrun" gives ".sparkrun-...").
void setTemporaryTag(const std::string& program);
// The leading text of every temporary name of this process: "." + tag + "-".
std::string temporaryPrefix();

// True when name (a file name without folder) has the temporary pattern.
bool isTemporaryName(const std::string& name);

// Removes from folder the temporaries that were made on this machine by a
// process that no longer runs, are regular files owned by this user and
// were last changed before `before`. Returns how many were removed.
int removeStaleTemporaries(const std::string& folder, time_t before);

// Unlinks every temporary this process has open. Async-signal-safe: for a
// signal handler, which then ends the process.
void removeOpenTemporaries();

}  // namespace safeio
