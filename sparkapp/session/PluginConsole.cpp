// Redirecting the plug-in's console output around an entry-point call.
#include "PluginConsole.h"

#include <fcntl.h>
#include <unistd.h>

#include <iostream>

namespace {
// Takes and drops whatever is written to it.
class NullBuffer : public std::streambuf {
  protected:
    int overflow(int c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

NullBuffer nullBuffer;

FILE* nullStream() {
    static FILE* sink = std::fopen("/dev/null", "w");
    return sink;
}
}  // namespace

PluginConsole::PluginConsole(bool quiet) : quiet_(quiet) {
    std::fflush(stdout);
    std::fflush(stderr);
    std::cout.flush();
    savedOut_ = dup(STDOUT_FILENO);
    if (!quiet_) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        return;
    }
    const int sink = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (sink >= 0) {
        dup2(sink, STDOUT_FILENO);
        close(sink);
    }
    // The stream, not the file: reports written straight to descriptor 2 stay visible.
    if (FILE* quietErr = nullStream()) {
        savedErrStream_ = stderr;
        stderr = quietErr;
    }
    savedCerr_ = std::cerr.rdbuf(&nullBuffer);
    savedClog_ = std::clog.rdbuf(&nullBuffer);
}

PluginConsole::~PluginConsole() {
    std::fflush(stdout);
    std::fflush(stderr);
    std::cout.flush();
    if (savedErrStream_) stderr = savedErrStream_;
    if (savedCerr_) std::cerr.rdbuf(savedCerr_);
    if (savedClog_) std::clog.rdbuf(savedClog_);
    if (savedOut_ >= 0) {
        dup2(savedOut_, STDOUT_FILENO);
        close(savedOut_);
    }
}
