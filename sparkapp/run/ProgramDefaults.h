// ProgramDefaults: what a program on the simulated host takes when the user
// names nothing: the plug-in beside the program, the machine's processors.
#pragma once

#include <string>

extern const char kDefaultPlugin[];  // "straightlux.spark"
const int kMaxProcessors = 64;       // the host record holds the count in a signed byte

// straightlux.spark in the folder of the running program.
std::string defaultPluginPath();

// The processors this machine offers, 1 to kMaxProcessors.
int defaultProcessors();
