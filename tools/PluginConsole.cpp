// Redirecting the plug-in's console output around an entry-point call.
#include "PluginConsole.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

PluginConsole::PluginConsole(bool quiet) : quiet_(quiet) {
    std::fflush(stdout);
    std::fflush(stderr);
    savedOut_ = dup(STDOUT_FILENO);
    if (quiet_) {
        savedErr_ = dup(STDERR_FILENO);
        const int sink = open("/dev/null", O_WRONLY);
        if (sink >= 0) {
            dup2(sink, STDOUT_FILENO);
            dup2(sink, STDERR_FILENO);
            close(sink);
        }
    } else {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
}

PluginConsole::~PluginConsole() {
    std::fflush(stdout);
    std::fflush(stderr);
    if (savedOut_ >= 0) {
        dup2(savedOut_, STDOUT_FILENO);
        close(savedOut_);
    }
    if (savedErr_ >= 0) {
        dup2(savedErr_, STDERR_FILENO);
        close(savedErr_);
    }
}
