// Row banding for forked work: which inclusive rows first..last band `index`
// of `bands` takes out of `count` rows. Every band gets count / bands rows
// (integer division) and the last band also takes the remainder, so with fewer
// rows than bands all bands but the last are empty (first 0, last -1).
// Shared by ImageZel::MultiProcess and the plug-in base class.
#pragma once

// Runs inside each forked worker: the worker's band index comes from the
// host's share report as (int)(offset / length + 0.2).
long zelBandIndex(unsigned long offset, unsigned long length);

void zelBandRows(long index, long bands, long count, long& first, long& last);
