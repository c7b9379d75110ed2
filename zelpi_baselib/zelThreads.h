// The framework's own thread runtime over POSIX threads: the table of tracked
// threads, mutex, condition and semaphore wrappers, the fork-join executor with
// its row bands, scheduling classes and questions about the machine. Include
// this one header to use any of it.
#pragma once

#include "zelClock.h"
#include "zelExecutor.h"
#include "zelScheduler.h"
#include "zelSync.h"
#include "zelSystemInfo.h"
#include "zelThreadLayer.h"
#include "zelThreadTable.h"
