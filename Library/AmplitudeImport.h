// Amplitude import: the "Import Amplitude File" button (control 114) lets the
// user pick a text file of keys and loads them into the user channel 93. The
// file reads, white space matching any run of white space:
//   Channel Amplitude <channel>:
//       Size <n>
//   then n blocks of
//       Key <key>  Frame <frame>  Value <value>  End
// Each block becomes a key at time <key> (not <frame>) of channel 93; the
// header's channel number is ignored. A negative size reads blocks until one
// does not scan; a malformed block ends the import quietly.
#pragma once

#include <spark.h>

extern "C" {
// Opens the host's file browser in the working directory, every file offered.
unsigned long* import_aiff_CB(int arg, SparkInfoStruct info);
// Loads the chosen file; tells the user when it cannot be opened or has no header.
void aiff_file_CB(char* path);
}
