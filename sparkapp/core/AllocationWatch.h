// AllocationWatch: whether an allocation failed anywhere in the process
// since it was last asked, in the plug-in as much as in the tool.
//
// A plug-in's entry guard turns a failed allocation into a failed call and a
// message on its error line ("... stopped: not enough memory."): the tool
// would see only a call that did nothing, or a frame not returned. The watch
// is a new-handler: it marks the failure and lets the allocation fail as it
// would have (std::bad_alloc), so that after each plug-in call the tool can
// tell that memory ran out (exit 7). Only allocations through operator new
// are seen; the mark is shared by every thread.
#pragma once

#include <string>

#include "RunStatus.h"

// Puts the watch in place (again is harmless).
void installAllocationWatch();

// True when an allocation failed since the last call; clears the mark.
bool allocationFailed();

// Exit 7 naming where ("in the plug-in's SparkProcess, frame 3") when an
// allocation failed since the last call; success otherwise.
RunStatus checkAllocations(const std::string& where);
