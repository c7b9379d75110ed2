// ReaderProcess: decodes pictures in a separate process, so that an image
// library that aborts or crashes on a damaged file ends that process, not
// the tool, and the tool reports it.
//
// The reader is this same program started afresh (/proc/self/exe with the
// internal first argument --reader-process), so that it inherits none of the
// image library's thread pools or locks. The first two may instead be forked
// at the program's start (startReaderEarly), which spares them loading the
// program's libraries again: before the program makes a thread of its own or
// touches the image library. (The only threads then are the idle pool that
// log4cplus starts when it is loaded, for OpenVDB, which no decoder here
// waits on.) It is
// started at its first read and serves every read of its ReaderProcess, one
// at a time, over a socket: a request (the file and the ReadRequest), an
// answer (the status and the header facts). The samples themselves are
// decoded straight into memory the two share (SharedSamples.h), so a frame
// is never copied through the kernel (unless a file-size limit keeps that
// memory from growing: then they follow the answer through the socket). A reader that ends without
// a complete answer is reported with how it ended ("the image library aborted while reading ..."),
// as an input failure, and a new one is started for the next read. The reader ends when its
// ReaderProcess is destroyed or the tool dies (it is killed with its parent).
//
// Several ReaderProcess objects may read at once, each from its own thread
// (the frame loop decodes frames ahead this way); one object serves one
// thread at a time.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FilePixels.h"
#include "ImageFiles.h"
#include "RunStatus.h"
#include "SharedSamples.h"

// The first argument that makes sparkrun a reader.
extern const char kReaderProcessArgument[];

class ReaderProcess {
  public:
    ReaderProcess() = default;
    ~ReaderProcess();
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    // Reads path; *picture owns a copy of the samples.
    RunStatus read(const std::string& path, const ReadRequest& request, FilePixels* picture,
                   int* depth);
    // Reads path; *view points into the shared memory, valid until the next read.
    RunStatus readShared(const std::string& path, const ReadRequest& request, PixelView* view,
                         FilePixels* facts, int* depth);

    // Peak resident size of the process so far (0 when none runs), and its
    // resident size between reads, as it was before the last one: what it
    // keeps from frame to frame.
    uint64_t peakMemory() const;
    uint64_t idleMemory() const { return idleResident_; }

    // Starts the process now as a fork of this one: for a program's very
    // start (startReaderEarly), while it has one thread and the image library
    // has not been touched, so that the reader costs no second loading of
    // the program's libraries. Later starts (after a reader died) run the
    // program afresh.
    bool forkNow();

  private:
    bool start(std::string* error);
    bool ask(const std::string& path, const ReadRequest& request);
    bool receive(RunStatus* status, PixelView* view, FilePixels* facts, int* depth);
    std::string ending();

    int slot_ = -1;  // in the table the signal cleanup reads
    pid_t pid_ = 0;
    int socket_ = -1;
    uint64_t idleResident_ = 0;
    SharedSamples samples_;
    std::vector<float> following_;  // samples sent through the socket (a file-size limit)
};

// The reader that readImage() uses, and the one that reads a sequence's
// frames ahead (FrameInputs), so that the two may read at once.
ReaderProcess& defaultReader();
ReaderProcess& aheadReader();

// Forks both: call first thing in main, before any thread.
void startReaderEarly();

RunStatus readInReaderProcess(const std::string& path, const ReadRequest& request,
                              FilePixels* picture, int* depth);

// The reader's side: serves requests until its socket closes. Returns the
// process's exit code.
int serveReaderRequests();

// Over every reader of the tool: the largest peak, and the sum of what they
// keep between frames. (A reader's peak moves by a few pages over a long run
// as the image library's own threads touch memory, even when nothing is kept.)
uint64_t readerPeakMemory();
uint64_t readerIdleMemory();

// Kills every reader. Async-signal-safe.
void stopReaderProcess();
// Kills every reader and waits for it: for a program's normal end, so that
// no finished reader is left for the system to collect.
void endReaderProcesses();
