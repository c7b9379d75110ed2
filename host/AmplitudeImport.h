// Amplitude import: the "Import Amplitude File" button (control 114) lets the
// user pick a text file of keys (see AmplitudeFile.h) and loads them into the
// user channel 93. Each block becomes a key at time <key> (not <frame>) of
// channel 93; the file's channel number is ignored.
#pragma once

#include "SparkApi.h"

extern "C" {
// Opens the host's file browser in the working directory, every file offered.
unsigned long* import_aiff_CB(int arg, SparkInfoStruct info);
// Loads the chosen file; tells the user when it cannot be opened or has no header.
void aiff_file_CB(char* path);
}
