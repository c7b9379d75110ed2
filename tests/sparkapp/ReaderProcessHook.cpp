// Lets a test program serve as the reader process its ReaderProcess objects
// start (they run /proc/self/exe --reader-process): before main, a program
// started that way serves reads and ends.
#include <unistd.h>

#include <fstream>
#include <string>

#include "ReaderProcess.h"

namespace {
bool startedAsReader() {
    std::ifstream in("/proc/self/cmdline", std::ios::binary);
    std::string program, first;
    return std::getline(in, program, '\0') && std::getline(in, first, '\0') &&
           first == kReaderProcessArgument;
}

const bool served = startedAsReader() && (_exit(serveReaderRequests()), true);
}  // namespace
