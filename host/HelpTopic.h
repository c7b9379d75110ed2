// Help: the "Help" button (control 31) opens the plug-in's page in a browser,
// started without a shell: the program ZEL_HELP_BROWSER (default "firefox",
// looked up on PATH) with the arguments "-geometry", "+50+50" and
// "file:<install>/dl/help/<topic base>.htm", the install directory being
// DIR_ZEL (default "/usr/local/Marrowby"); an empty variable counts as unset.
// The browser is detached: the host neither waits for it nor keeps it as a
// child. A browser that cannot be started is the help's failure.
#pragma once

#include <string>
#include <vector>

#include "SparkApi.h"

constexpr const char* kHelpTopic = "straightlux.htm";

extern "C" unsigned long* HelpCB(int arg, SparkInfoStruct info);

// Starts the browser on the topic's page; 0 when it started, non-zero when it
// could not be (no such program, or a value too long).
int display_help_topic(const char* topic);

// The browser's argument vector for the given values, program first. False,
// with arguments emptied, when a value is missing or a path would be too long.
bool buildHelpArguments(std::vector<std::string>& arguments, const char* browser,
                        const char* installDir, const char* topic);
