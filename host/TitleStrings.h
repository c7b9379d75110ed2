// Copies of host field titles. A trailing "*" marks a locked field. The
// destination must hold the source plus one character; each returns dst.
#pragma once

// Copies src and drops trailing blanks and newlines from the copy.
char* strcpy_strip(char* dst, const char* src);
// Copies src and appends one "*".
char* strcpy_addlock(char* dst, const char* src);
// Copies src and drops every trailing "*" from the copy.
char* strcpy_dellock(char* dst, const char* src);
