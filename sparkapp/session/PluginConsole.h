// PluginConsole: while a plug-in entry point runs, sends what the plug-in
// prints to the console away from the tool's standard output, so that the
// tool's own output (control listings, comparisons) stays clean for scripts.
// Normally the plug-in's standard output goes to standard error. When quiet,
// the plug-in's own console output is dropped: its standard output, and what
// it writes through the C and C++ standard error streams (stderr, std::cerr,
// std::clog). The standard error file itself stays open, so that a crash
// report, a sanitizer's report or a C library's fatal message raised inside
// the call is still seen.
#pragma once

#include <cstdio>
#include <streambuf>

class PluginConsole {
  public:
    explicit PluginConsole(bool quiet);
    ~PluginConsole();
    PluginConsole(const PluginConsole&) = delete;
    PluginConsole& operator=(const PluginConsole&) = delete;

  private:
    bool quiet_;
    int savedOut_ = -1;
    FILE* savedErrStream_ = nullptr;
    std::streambuf* savedCerr_ = nullptr;
    std::streambuf* savedClog_ = nullptr;
};
