// FileHeaders: checks made on a file's own header before the image library
// reads it, for formats whose readers take a short file for a whole one.
//
// DPX (SMPTE 268M) and Cineon headers state the total file size, and a DPX
// header places the first image element's data and describes its layout:
// a file shorter than either is cut off. The DPX data size counted is the
// smallest any packing of the element can have (packed words running on
// across lines, no padding), so that a whole file is never refused. Other
// formats get no check here (their readers report a premature end).
#pragma once

#include <string>

// Empty when the file passes (or has no header this knows); otherwise what
// is wrong, e.g. "cut off: its header says 20480 bytes, the file has 10240".
std::string headerProblem(const std::string& path);
