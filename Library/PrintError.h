// PrintError: tells the user about a failure on the host's message line, waits
// 2 seconds so that the text can be read, then writes it to standard error as
// "SPARK_MESSAGE::\t<text>\n". Used by the host binding and by plug-ins.
#pragma once

void PrintError(const char* text);
