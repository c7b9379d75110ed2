// Help: the "Help" button (control 31) opens the plug-in's page in a browser.
// The command is "<browser> -geometry +50+50 file:<install>/dl/help/<topic
// base>.htm &", run through the shell. The browser comes from
// ZEL_HELP_BROWSER (default "firefox"), the install directory from DIR_ZEL
// (default "/usr/local/Marrowby"). A value made only of ordinary characters
// goes into the command as it stands; any other is single-quoted, so the
// shell sees it as one word and runs nothing the user did not name.
#pragma once

#include <cstddef>

#include "SparkApi.h"

constexpr const char* kHelpTopic = "straightlux.htm";

extern "C" unsigned long* HelpCB(int arg, SparkInfoStruct info);

// Runs the browser on the topic's page; the shell's status, non-zero on
// failure (also when a value is too long for the command).
int display_help_topic(const char* topic);

// Writes the browser command for the given values into command (size bytes).
// False, with command emptied, when a value is missing or anything does not fit.
bool buildHelpCommand(char* command, std::size_t size, const char* browser, const char* installDir,
                      const char* topic);
