// Texts handed to the host. The host's records and calls take plain char*
// although the host only reads them; sparkText gives a literal that type
// without copying, and stays usable in constant initialisers of records.
#pragma once

constexpr char* sparkText(const char* text) { return const_cast<char*>(text); }
