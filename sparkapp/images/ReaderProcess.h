// ReaderProcess: decodes pictures in a separate process, so that an image
// library that aborts or crashes on a damaged file ends that process, not
// the tool, and the tool reports it.
//
// The reader is this same program started afresh (/proc/self/exe with the
// internal first argument --reader-process): a new process, not a fork, so
// that it inherits none of the image library's thread pools or locks. It is
// started at the first read and serves every read of the run, one at a time,
// through two pipes: a request (the file and the ReadRequest), an answer
// (the status, the header facts and the samples). A reader that ends
// without a complete answer is reported with how it ended ("the image
// library aborted while reading ..."), as an input failure, and a new one is
// started for the next read. The reader ends when the tool closes its
// request pipe or dies (it is killed with its parent).
#pragma once

#include <cstdint>
#include <string>

#include "FilePixels.h"
#include "ImageFiles.h"
#include "RunStatus.h"

// The first argument that makes sparkrun a reader.
extern const char kReaderProcessArgument[];

RunStatus readInReaderProcess(const std::string& path, const ReadRequest& request,
                              FilePixels* picture, int* depth);

// The reader's side: serves requests until its request pipe closes. Returns
// the process's exit code.
int serveReaderRequests();

// The reader's peak resident size so far (0 when none runs), and its
// resident size between reads, as it was before the last one: what it keeps
// from frame to frame. (Its peak moves by a few pages over a long run as the
// image library's own threads touch memory, even when nothing is kept.)
uint64_t readerPeakMemory();
uint64_t readerIdleMemory();

// Kills the reader. Async-signal-safe.
void stopReaderProcess();
